#include "editor/holder_window.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace {

struct Freed {
    void operator()(void* memory) const { std::free(memory); }
};

}  // namespace

std::unique_ptr<HolderWindow> HolderWindow::Make(xcb_connection_t* connection, std::uint32_t parent,
                                                 std::uint16_t width, std::uint16_t height) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const std::unique_ptr<xcb_get_geometry_reply_t, Freed> geometry(
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

HolderWindow::~HolderWindow() {
    xcb_destroy_window(connection, id);
    xcb_flush(connection);
}
