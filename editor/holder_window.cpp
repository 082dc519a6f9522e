#include "editor/holder_window.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace {

struct Freed {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, Freed>;

// The atom by which a window manager marks the windows that it knows; 0 where there has been none.
xcb_atom_t StateAtom(xcb_connection_t* connection) {
    constexpr char name[] = "WM_STATE";
    const Owned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 1, sizeof name - 1, name), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool HasProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property) {
    if (property == XCB_ATOM_NONE) return false;
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, property, XCB_ATOM_ANY, 0, 0), nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

}  // namespace

std::unique_ptr<HolderWindow> HolderWindow::Make(xcb_connection_t* connection, std::uint32_t parent,
                                                 std::uint16_t width, std::uint16_t height) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const Owned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, parent), nullptr));
    if (!geometry || geometry->root != screen->root) return nullptr;

    // Border and colour map have to be named where the parent's visual is another one.
    const xcb_window_t id = xcb_generate_id(connection);
    const std::uint32_t mask = XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP;
    const std::uint32_t values[] = {screen->white_pixel, screen->black_pixel, screen->default_colormap};
    const auto made =
        xcb_create_window_checked(connection, screen->root_depth, id, parent, 0, 0, width, height, 0,
                                  XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, mask, values);
    const std::unique_ptr<xcb_generic_error_t, Freed> error(xcb_request_check(connection, made));
    if (error || xcb_connection_has_error(connection) != 0) return nullptr;
    xcb_map_window(connection, id);
    xcb_flush(connection);
    return std::unique_ptr<HolderWindow>(new HolderWindow(connection, id));
}

std::uint32_t HolderWindow::TopLevel() const {
    const xcb_atom_t state = StateAtom(connection);
    for (xcb_window_t window = id;;) {
        const Owned<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
        if (!tree) return 0;
        if (tree->parent == tree->root || HasProperty(connection, window, state)) return window;
        window = tree->parent;
    }
}

HolderWindow::~HolderWindow() {
    xcb_destroy_window(connection, id);
    xcb_flush(connection);
}
