#include <gmock/gmock.h>

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

// As zenity's own file dialog: a window with the program's number, which a window manager lists.
TEST_F(SaveDialog, IsMadeToWhereItsProgramIgnoresItsOwner) {
    TempFolder folder;
    folder.Program("zenity", "cd " + folder.path.string() + "; echo $$ > new; mv new pid; exec sleep 1000");
    folder.BecomePath(true);
    host->plugin.setParameter(92, 5.0F);
    ASSERT_TRUE(host->Open());
    host->Settle();
    host->Click(saveLogButton.x, saveLogButton.y);
    ASSERT_TRUE(host->Await([&] { return folder.Has("pid"); }));
    const auto process = static_cast<std::uint32_t>(std::stoul(ReadAll(folder / "pid")));
    const xcb_window_t dialog = xcb_generate_id(host->connection);
    xcb_create_window(host->connection, XCB_COPY_FROM_PARENT, dialog, host->screen->root, 0, 0, 9, 9, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto set = [&](xcb_window_t window, const char* property, xcb_atom_t type, std::uint32_t word) {
        xcb_change_property(host->connection, XCB_PROP_MODE_REPLACE, window, host->Atom(property), type, 32,
                            1, &word);
    };
    set(dialog, "_NET_WM_PID", XCB_ATOM_CARDINAL, process);
    set(host->screen->root, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, dialog);
    host->Sync();
    const std::string owner(reinterpret_cast<const char*>(&host->parent), sizeof host->parent);
    EXPECT_TRUE(host->Await([&] { return host->Property(dialog, "WM_TRANSIENT_FOR") == owner; }));
    setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1);
}
