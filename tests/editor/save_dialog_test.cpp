#include "tests/editor/editor_test.h"
#include "tests/support/await.h"
#include "tests/support/temp_folder.h"

namespace {

class SaveDialog : public EditorTest {};

}  // namespace

// Its owner is the window that the manager knows, however deep the editor's parent lies in it.
TEST_F(SaveDialog, BelongsToTheHostsWindow) {
    TempFolder folder;
    folder.Program("zenity", "cd " + folder.path.string() + "; printf '%s\\n' \"$@\" > new; mv new told");
    folder.BecomePath(true);
    const xcb_window_t inner = xcb_generate_id(host->connection);
    xcb_create_window(host->connection, XCB_COPY_FROM_PARENT, inner, host->parent, 0, 0, 400, 320, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(host->connection, inner);
    host->Sync();
    host->plugin.setParameter(92, 5.0F);
    ASSERT_TRUE(host->Open(inner));
    host->Settle();
    host->Click(saveLogButton.x, saveLogButton.y);
    EXPECT_TRUE(host->Await([&] { return folder.Has("told"); }));
    EXPECT_THAT(ReadAll(folder / "told"),
                testing::HasSubstr("\n--attach=" + std::to_string(host->parent) + "\n"));
    setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1);
}
