#pragma once
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "tests/editor/display_server.h"
#include "tests/editor/parent_window.h"

// A display of the process's own, started at the first request and ended with the process.
inline DisplayServer& OwnDisplay() {
    static DisplayServer server;
    return server;
}

// What a host has on the display: one window in which an editor may open.
class HostWindow {
public:
    HostWindow() {
        OwnDisplay();
        connection = xcb_connect(nullptr, nullptr);
        const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        window = MakeParentWindow(connection, screen);
        Children();
    }
    ~HostWindow() { xcb_disconnect(connection); }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    void* Handle() const { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(window)); }
    // Windows inside ours; -1 when the display is gone.
    int Children() const {
        const std::unique_ptr<xcb_query_tree_reply_t, void (*)(void*)> tree(
            xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr), &std::free);
        return tree ? xcb_query_tree_children_length(tree.get()) : -1;
    }

private:
    xcb_connection_t* connection = nullptr;
    xcb_window_t window = 0;
};
