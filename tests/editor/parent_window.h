#pragma once
#include <xcb/xcb.h>

#include <cstdint>

// A host's window for the editor, at the display's upper left corner, without a frame; sent, not yet
// answered.
inline xcb_window_t MakeParentWindow(xcb_connection_t* connection, const xcb_screen_t* screen) {
    const xcb_window_t parent = xcb_generate_id(connection);
    const std::uint32_t values[] = {screen->white_pixel, 1};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, parent, screen->root, 0, 0, 400, 320, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(connection, parent);
    return parent;
}
