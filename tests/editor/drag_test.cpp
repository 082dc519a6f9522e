#include "tests/editor/editor_test.h"

namespace {

// The receiver's side of XDND, as a file manager plays it: a window beside the host's.
class DropTarget {
public:
    DropTarget() : connection(xcb_connect(nullptr, nullptr)), window(xcb_generate_id(connection)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        const std::uint32_t unmanaged = 1, version = 5;
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 500, 0, 200, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                          &unmanaged);
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, Atom("XdndAware"), XCB_ATOM_ATOM, 32,
                            1, &version);
        xcb_map_window(connection, window);
        xcb_flush(connection);
    }
    ~DropTarget() { xcb_disconnect(connection); }

    void Answer() {
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
            const int type = event->response_type & 0x7F;
            if (type == XCB_SELECTION_NOTIFY) Take();
            if (type != XCB_CLIENT_MESSAGE) continue;
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
            source = message.data.data32[0];
            if (message.type == Atom("XdndPosition"))
                ++positions, Send("XdndStatus", accepts ? 1 : 0, accepts ? message.data.data32[4] : 0);
            if (message.type == Atom("XdndLeave")) wasLeft = true;
            if (message.type == Atom("XdndDrop"))
                xcb_convert_selection(connection, window, Atom("XdndSelection"), Atom("text/uri-list"),
                                      Atom("DROPPED"), message.data.data32[2]);
        }
        xcb_flush(connection);
    }

    bool accepts = true, wasLeft = false;
    int positions = 0;
    std::string dropped;

private:
    xcb_atom_t Atom(std::string_view name) {
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, std::uint16_t(name.size()), name.data()), nullptr));
        return reply->atom;
    }
    void Send(const char* type, std::uint32_t first, std::uint32_t last) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = source;
        message.type = Atom(type);
        message.data.data32[0] = window;
        message.data.data32[1] = first;
        message.data.data32[4] = last;
        xcb_send_event(connection, 0, source, 0, reinterpret_cast<const char*>(&message));
    }
    void Take() {
        const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            connection, xcb_get_property(connection, 1, window, Atom("DROPPED"), XCB_ATOM_ANY, 0, 4096),
            nullptr));
        dropped.assign(static_cast<const char*>(xcb_get_property_value(reply.get())),
                       std::size_t(xcb_get_property_value_length(reply.get())));
        Send("XdndFinished", 1, 0);
    }

    xcb_connection_t* connection;
    xcb_window_t window, source = 0;
};

class TakeDragging : public EditorTest {
protected:
    void SetUp() override {
        folder.BecomePath(true);  // without a program for the dialog, a click on Save ends in a message
        setenv("TMPDIR", folder.path.c_str(), 1);
        Open();
        host->plugin.resume();
        Click(recordButton);
        Play({69}, 1.0), Play({}, 0.5);
    }
    void TearDown() override { unsetenv("TMPDIR"), setenv("PATH", "/usr/bin:/bin", 1); }
    void DragOver(DropTarget& target) {
        host->MoveTo(saveButton.x, saveButton.y);
        host->Press();
        host->Settle();
        host->MoveTo(600, 100);
        EXPECT_TRUE(host->Await([&] { return target.Answer(), target.positions > 2; }));
        host->Release();
    }
    TempFolder folder;
};

TEST_F(TakeDragging, GivesAnotherProgramTheTakeAsAFileThatLastsUntilTheWindowCloses) {
    DropTarget target;
    DragOver(target);
    ASSERT_TRUE(host->Await([&] { return target.Answer(), !target.dropped.empty(); }));
    EXPECT_FALSE(host->plugin.recordingOn);
    ASSERT_TRUE(target.dropped.starts_with("file:///") && target.dropped.ends_with(".mid\r\n"))
        << target.dropped;
    std::string path = target.dropped.substr(7, target.dropped.size() - 9);
    for (std::size_t at; (at = path.find("%20")) != std::string::npos;) path.replace(at, 3, " ");
    EXPECT_NE(ReadAll(path).find("\x45\x64"), std::string::npos) << "no A 440, velocity 100";
    EXPECT_FALSE(MessageIsUp());  // it was no click
    host->Call(effEditClose);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(TakeDragging, DropsNothingWhereItIsRefused) {
    DropTarget target;
    target.accepts = false;
    DragOver(target);
    EXPECT_TRUE(host->Await([&] { return target.Answer(), target.wasLeft; }));
    EXPECT_EQ(target.dropped, "");
    EXPECT_FALSE(MessageIsUp());
}

}  // namespace
