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
    const auto set = [&](xcb_window_t window, const std::string& property, xcb_atom_t type,
                         std::uint32_t word) {
        const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
            host->connection,
            xcb_intern_atom(host->connection, 0, static_cast<std::uint16_t>(property.size()),
                            property.data()),
            nullptr));
        xcb_change_property(host->connection, XCB_PROP_MODE_REPLACE, window, atom->atom, type, 32, 1, &word);
    };
    set(dialog, "_NET_WM_PID", XCB_ATOM_CARDINAL, process);
    set(host->screen->root, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW, dialog);
    host->Sync();
    EXPECT_TRUE(host->Await([&] {
        const XcbReply<xcb_get_property_reply_t> owner(xcb_get_property_reply(
            host->connection,
            xcb_get_property(host->connection, 0, dialog, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 0, 1),
            nullptr));
        return xcb_get_property_value_length(owner.get()) == 4 &&
               *static_cast<xcb_window_t*>(xcb_get_property_value(owner.get())) == host->parent;
    }));
    setenv("PATH", "/usr/local/bin:/usr/bin:/bin", 1);
}
