#include "editor/file_drag.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <string_view>

#include "base/linux/owned.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t ownVersion = 5;  // of the protocol, XDND
// For an answer of the window that the pointer is over.
constexpr auto timeout = std::chrono::seconds(5);

// As a list of files is written: what is not plain is a byte's number, and each line ends so.
std::string UriList(const std::string& path) {
    std::string uri = "file://";
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) != 0 || std::string_view("/-._~").find(character) != std::string_view::npos) {
            uri += character;
        } else {
            char text[4];
            std::snprintf(text, sizeof text, "%%%02X", static_cast<unsigned>(byte));
            uri += text;
        }
    }
    return uri + "\r\n";
}

// The source's side of XDND. The toolkit has the other side only. It holds the pointer while the button is
// down, so the pointer is asked for where it is rather than grabbed; the connection of its own keeps the
// answers out of the toolkit's events.
class XdndSource : public FileDrag {
public:
    explicit XdndSource(const std::string& path)
        : uris(UriList(path)), connection(xcb_connect(nullptr, nullptr)) {
        if (!Works()) return;
        root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        self = xcb_generate_id(connection);
        xcb_create_window(connection, 0, self, root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection, self, selection = Atom("XdndSelection"), XCB_CURRENT_TIME);
    }
    ~XdndSource() override {
        if (Works() && !dropped) Leave();
        // A server that finds a connection closed may pass over what it has not read yet, so it is asked to
        // answer.
        if (Works())
            Owned<xcb_get_input_focus_reply_t>(
                xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
        xcb_disconnect(connection);
    }

    bool Works() const { return xcb_connection_has_error(connection) == 0; }

    bool GoesOn() override {
        if (!Works()) return false;
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) Take(*event);
        const bool waits = awaitsStatus || dropped;
        if (finished || (waits && Clock::now() > deadline)) return false;
        const bool goesOn = dropped || Follow();
        xcb_flush(connection);
        return goesOn;
    }

private:
    xcb_atom_t Atom(std::string_view name) {
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    void Take(const xcb_generic_event_t& event) {
        const int type = event.response_type & 0x7F;
        if (type == XCB_SELECTION_REQUEST)
            Hand(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        if (type != XCB_CLIENT_MESSAGE) return;
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (message.data.data32[0] != target) return;  // of a window that was left
        if (message.type == status) {
            awaitsStatus = false;
            accepts = (message.data.data32[1] & 1U) != 0;
        }
        finished = finished || message.type == done;
    }

    // The list of files, to whoever asks for it; where another form of it is asked for, nothing.
    void Hand(const xcb_selection_request_event_t& request) {
        xcb_selection_notify_event_t answer{};
        answer.response_type = XCB_SELECTION_NOTIFY;
        answer.time = request.time;
        answer.requestor = request.requestor;
        answer.selection = request.selection;
        answer.target = request.target;
        if (request.target == list) {
            answer.property = request.property;
            xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property, list,
                                8, static_cast<std::uint32_t>(uris.size()), uris.data());
        }
        xcb_send_event(connection, 0, request.requestor, 0, reinterpret_cast<const char*>(&answer));
    }

    // Where the pointer is. False once the button was let go over nothing that takes files.
    bool Follow() {
        const Owned<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
        if (!pointer) return false;
        if ((pointer->mask & XCB_BUTTON_MASK_1) == 0) {
            if (awaitsStatus) return true;
            if (target == XCB_NONE || !accepts) return false;
            Send(drop, 0, XCB_CURRENT_TIME, 0);
            dropped = true;
            deadline = Clock::now() + timeout;
            return true;
        }
        std::uint32_t version = 0;
        const xcb_window_t under = Under(pointer->root_x, pointer->root_y, version);
        if (under != target) {
            Leave();
            target = under;
            accepts = awaitsStatus = false;
            if (target != XCB_NONE) Send(enter, std::min(version, ownVersion) << 24, list, 0);
        }
        const std::uint32_t place = static_cast<std::uint32_t>(pointer->root_x) << 16 |
                                    (static_cast<std::uint32_t>(pointer->root_y) & 0xFFFFU);
        if (target == XCB_NONE || awaitsStatus) return true;
        Send(position, 0, place, XCB_CURRENT_TIME, copy);
        awaitsStatus = true;
        deadline = Clock::now() + timeout;
        return true;
    }

    // The outermost window at that place that takes drops, and its version of the protocol.
    xcb_window_t Under(int x, int y, std::uint32_t& version) {
        for (xcb_window_t window = root;;) {
            const Owned<xcb_translate_coordinates_reply_t> inside(xcb_translate_coordinates_reply(
                connection,
                xcb_translate_coordinates(connection, root, window, static_cast<std::int16_t>(x),
                                          static_cast<std::int16_t>(y)),
                nullptr));
            if (!inside || inside->child == XCB_NONE) return XCB_NONE;
            window = inside->child;
            const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
                connection, xcb_get_property(connection, 0, window, aware, XCB_ATOM_ANY, 0, 1), nullptr));
            if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4) continue;
            version = *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
            return window;
        }
    }

    void Leave() {
        if (target != XCB_NONE) Send(leave, 0, 0, 0);
        target = XCB_NONE;
    }

    void Send(xcb_atom_t type, std::uint32_t first, std::uint32_t second, std::uint32_t third,
              std::uint32_t fourth = 0) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = target;
        message.type = type;
        const std::uint32_t words[] = {self, first, second, third, fourth};
        std::copy(std::begin(words), std::end(words), message.data.data32);
        xcb_send_event(connection, 0, target, 0, reinterpret_cast<const char*>(&message));
    }

    const std::string uris;
    xcb_connection_t* const connection;
    xcb_window_t root = XCB_NONE, self = XCB_NONE;
    xcb_window_t target = XCB_NONE;  // which has been entered
    bool accepts = false;            // as it said last
    bool awaitsStatus = false, dropped = false, finished = false;
    Clock::time_point deadline;  // of what is awaited
    xcb_atom_t selection = XCB_ATOM_NONE;
    const xcb_atom_t aware = Atom("XdndAware"), enter = Atom("XdndEnter"), position = Atom("XdndPosition"),
                     leave = Atom("XdndLeave"), drop = Atom("XdndDrop"), status = Atom("XdndStatus"),
                     done = Atom("XdndFinished"), copy = Atom("XdndActionCopy"), list = Atom("text/uri-list");
};

}  // namespace

std::unique_ptr<FileDrag> FileDrag::Begin(VSTGUI::CView&, const std::string& path) {
    auto made = std::make_unique<XdndSource>(path);
    if (!made->Works()) return nullptr;
    return made;
}
