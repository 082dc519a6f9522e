#pragma once
#include <xcb/xcb.h>

#include "base/linux/owned.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"

// A display without a screen, of our own: the programs of these tests see no other. Ended with the object.
class DisplayServer {
public:
    // At the next free number, which becomes the DISPLAY of this process.
    DisplayServer() {
        const TempFolder folder;
        server.Start(
            "exec Xvfb -displayfd 3 -screen 0 1024x768x24 -screen 1 64x64x24 -nolisten tcp -noreset "
            "2> /dev/null 3> " +
            folder / "number");
        std::string number;
        AwaitThat([&] { return (number = ReadAll(folder / "number")).ends_with('\n') || server.HasEnded(); });
        if (number.empty()) throw std::runtime_error("Xvfb did not start");
        number.pop_back();
        setenv("DISPLAY", (":" + number).c_str(), 1);
    }
    void End() { server.End(SIGKILL); }

private:
    Process server;
};

// What a host has on the display that DISPLAY names: a connection, and a window in which an editor may open,
// at the display's upper left corner and without a frame.
class ParentWindow {
public:
    ParentWindow() = default;
    ~ParentWindow() {
        if (connection != nullptr) xcb_disconnect(connection);
    }
    ParentWindow(const ParentWindow&) = delete;
    ParentWindow& operator=(const ParentWindow&) = delete;

    // With a window, where there is such a display.
    void Connect() {
        connection = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(connection) != 0) return;
        screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        MakeParent();
    }
    // Another window in the place of the one before, which stays.
    void MakeParent() {
        parent = xcb_generate_id(connection);
        const std::uint32_t values[] = {screen->white_pixel, 1};
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, parent, screen->root, 0, 0, 400, 320, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(connection, parent);
        Sync();
    }
    // Until the display has done all that it was asked.
    void Sync() const {
        const Owned<xcb_get_input_focus_reply_t> answer(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }
    void* Handle() const { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(parent)); }

    // The windows inside ours, or another; throws where it or the display is gone.
    std::vector<xcb_window_t> Children() const { return Children(parent); }
    std::vector<xcb_window_t> Children(xcb_window_t of) const {
        const Owned<xcb_query_tree_reply_t> reply(
            xcb_query_tree_reply(connection, xcb_query_tree(connection, of), nullptr));
        if (!reply) throw std::runtime_error("no such window");
        std::vector<xcb_window_t> windows(reply->children_len);
        std::copy_n(xcb_query_tree_children(reply.get()), windows.size(), windows.begin());
        return windows;
    }
    // Four bytes a pixel: blue, green, red, unused.
    std::vector<std::uint8_t> Pixels(int x, int y, int width, int height) const {
        const auto asked =
            xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, parent, static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height), ~0U);
        const Owned<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection, asked, nullptr));
        if (!reply) return {};
        const std::uint8_t* const data = xcb_get_image_data(reply.get());
        return {data, data + xcb_get_image_data_length(reply.get())};
    }

    xcb_connection_t* connection = nullptr;
    xcb_screen_t* screen = nullptr;
    xcb_window_t parent = 0;
};

// A display of the process's own, started at the first request and ended with the process.
inline DisplayServer& OwnDisplay() {
    static DisplayServer server;
    return server;
}

// A host's window on it.
class HostWindow : public ParentWindow {
public:
    HostWindow() {
        OwnDisplay();
        Connect();
    }
};
