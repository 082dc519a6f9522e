#include "lv2/outer_window.h"

#include <xcb/xcb.h>

#include <cstring>

#include "base/linux/owned.h"

namespace {

constexpr char title[] = "ORVA Audio To MIDI";

constexpr std::uint32_t smallestSize = 1U << 4, largestSize = 1U << 5;  // flags

// The size hints of the window manager's conventions: flags, and the fields that they name.
struct SizeHints {
    std::uint32_t flags = largestSize;
    std::uint32_t placeAndSize[4] = {};  // not used any more
    std::uint32_t smallest[2] = {};
    std::uint32_t largest[2] = {};
    std::uint32_t rest[9] = {};
};
static_assert(sizeof(SizeHints) == 18 * sizeof(std::uint32_t));

}  // namespace

std::unique_ptr<OuterWindow> OuterWindow::Make(std::uint32_t parent, std::uint16_t width,
                                               std::uint16_t height) {
    std::unique_ptr<OuterWindow> window(new OuterWindow(xcb_connect(nullptr, nullptr)));
    if (xcb_connection_has_error(window->connection) != 0) return nullptr;
    return window->Create(parent, width, height) ? std::move(window) : nullptr;
}

OuterWindow::~OuterWindow() {
    if (id != 0) xcb_destroy_window(connection, id);
    Arrived();  // the host may rely on it that its window is empty again
    xcb_disconnect(connection);
}

bool OuterWindow::Create(std::uint32_t parent, std::uint16_t width, std::uint16_t height) {
    // With the screen's own visual: a host's window may have an alpha channel.
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t wanted = xcb_generate_id(connection);
    // Without a background, which would show before the editor's own window covers this one.
    const std::uint32_t mask = XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::uint32_t values[] = {screen->black_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                    screen->default_colormap};
    const auto made = xcb_create_window_checked(
        connection, screen->root_depth, wanted, parent != 0 ? parent : screen->root, 0, 0, width, height, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, mask, values);
    const Owned<xcb_generic_error_t> error(xcb_request_check(connection, made));
    if (error || xcb_connection_has_error(connection) != 0) return false;
    id = wanted;

    isOnItsOwn = parent == 0;
    SetHints(width, height);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        sizeof title - 1, title);
    if (isOnItsOwn) {
        closing = Atom("WM_DELETE_WINDOW");
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, Atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, 32, 1,
                            &closing);
    }
    Show();
    // The editor opens inside it by a connection of its own, to which the window must exist by now.
    return Arrived();
}

void OuterWindow::SetHints(std::uint32_t width, std::uint32_t height) {
    SizeHints hints;
    // A host that embeds the window may keep its place at the first smallest size, and cut off a larger
    // window.
    if (isOnItsOwn) hints.flags |= smallestSize;
    hints.smallest[0] = hints.largest[0] = width;
    hints.smallest[1] = hints.largest[1] = height;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, sizeof hints / 4, &hints);
}

void OuterWindow::Resize(std::uint16_t width, std::uint16_t height) {
    SetHints(width, height);
    const std::uint32_t values[] = {width, height};
    xcb_configure_window(connection, id, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    Arrived();
}

// All requests so far have been carried out: an answer to a later one says so.
bool OuterWindow::Arrived() {
    const Owned<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    return answer != nullptr;
}

std::uint32_t OuterWindow::Atom(const char* name) {
    const auto asked = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, asked, nullptr));
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

void OuterWindow::Show() {
    xcb_map_window(connection, id);
    xcb_flush(connection);
}

bool OuterWindow::UserHasClosed() {
    bool closed = false;
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        constexpr unsigned sentByAnother = 0x80;
        const unsigned type = event->response_type & ~sentByAnother;
        if (type == XCB_CLIENT_MESSAGE) {
            const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event.get());
            closed = closed || (closing != 0 && message->data.data32[0] == closing);
        }
        if (type == XCB_DESTROY_NOTIFY) {
            id = 0;  // its parent has taken it along
            closed = true;
        }
    }
    return closed || xcb_connection_has_error(connection) != 0;
}
