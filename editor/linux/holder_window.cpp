#include "editor/linux/holder_window.h"

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <string_view>
#include <vector>

#include "base/linux/owned.h"

namespace {

// 0 where nobody has made it.
xcb_atom_t AtomOf(xcb_connection_t* connection, std::string_view name) {
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// The words of a reply to a question for a property.
std::vector<std::uint32_t> WordsOf(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 32) return {};
    const auto* const words = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
    return {words, words + xcb_get_property_value_length(reply) / 4};
}

bool HasProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property) {
    if (property == XCB_ATOM_NONE) return false;
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, property, XCB_ATOM_ANY, 0, 0), nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

}  // namespace

std::unique_ptr<HolderWindow> HolderWindow::Make(xcb_connection_t* connection, std::uint32_t parent,
                                                 std::uint16_t width, std::uint16_t height,
                                                 std::uint32_t colour) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const Owned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, parent), nullptr));
    if (!geometry || geometry->root != screen->root) return nullptr;

    // Border and colour map have to be named where the parent's visual is another one.
    const xcb_window_t id = xcb_generate_id(connection);
    const std::uint32_t mask = XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP;
    const std::uint32_t values[] = {colour, screen->black_pixel, screen->default_colormap};
    const auto made =
        xcb_create_window_checked(connection, screen->root_depth, id, parent, 0, 0, width, height, 0,
                                  XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, mask, values);
    const Owned<xcb_generic_error_t> error(xcb_request_check(connection, made));
    if (error || xcb_connection_has_error(connection) != 0) return nullptr;
    xcb_map_window(connection, id);
    xcb_flush(connection);
    return std::unique_ptr<HolderWindow>(new HolderWindow(connection, parent, id));
}

void HolderWindow::Resize(std::uint16_t width, std::uint16_t height) {
    const std::uint32_t values[] = {width, height};
    xcb_configure_window(connection, id, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    xcb_flush(connection);
}

std::uint32_t HolderWindow::TopLevel() const {
    const xcb_atom_t state = AtomOf(connection, "WM_STATE");  // of the windows that a manager knows
    for (xcb_window_t window = id;;) {
        const Owned<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
        if (!tree) return 0;
        if (tree->parent == tree->root || HasProperty(connection, window, state)) return window;
        window = tree->parent;
    }
}

bool HolderWindow::Own(std::uint32_t process) const {
    constexpr std::uint32_t most = 1024;  // windows that are looked at
    const xcb_atom_t list = AtomOf(connection, "_NET_CLIENT_LIST"), pid = AtomOf(connection, "_NET_WM_PID");
    if (list == XCB_ATOM_NONE || pid == XCB_ATOM_NONE) return false;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const Owned<xcb_get_property_reply_t> clients(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, root, list, XCB_ATOM_WINDOW, 0, most), nullptr));
    const std::vector<xcb_window_t> windows = WordsOf(clients.get());
    std::vector<xcb_get_property_cookie_t> asked;  // all at once, and then the answers
    asked.reserve(windows.size());
    for (const xcb_window_t window : windows)
        asked.push_back(xcb_get_property(connection, 0, window, pid, XCB_ATOM_CARDINAL, 0, 1));
    const std::uint32_t owner = TopLevel();
    bool found = false;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, asked[i], nullptr));
        if (owner == 0 || WordsOf(reply.get()) != std::vector<std::uint32_t>{process}) continue;
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, windows[i], XCB_ATOM_WM_TRANSIENT_FOR,
                            XCB_ATOM_WINDOW, 32, 1, &owner);
        found = true;
    }
    xcb_flush(connection);
    return found;
}

void HolderWindow::PassKey(std::uint32_t symbol, std::uint16_t modifiers, bool down) const {
    xcb_key_symbols_t* const symbols = xcb_key_symbols_alloc(connection);
    const Owned<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(symbols, symbol));
    xcb_key_symbols_free(symbols);
    if (!codes || *codes == XCB_NO_SYMBOL) return;
    xcb_key_press_event_t event = {};  // a release is the same record
    event.response_type = down ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
    event.detail = *codes;
    event.root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    event.event = parent;
    event.state = modifiers;
    event.same_screen = 1;
    xcb_send_event(connection, 1, parent, down ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection);
}

HolderWindow::~HolderWindow() {
    xcb_destroy_window(connection, id);
    xcb_flush(connection);
}
