#include "editor/toolkit.h"

#include <cairo/cairo-xcb.h>
#include <xcb/xcb.h>

#include "base/lasting.h"
#include "editor/fonts.h"
#include "editor/linux/display.h"
#include "vst2/records.h"
#include "vstgui/lib/platform/linux/x11platform.h"
#include "vstgui/lib/vstguiinit.h"

namespace {

// Outlasts the rest: a host may close its last editor while the process already ends. And takes no memory of
// its own, since an editor that could not be made for want of memory locks it, too.
struct Toolkit {
    std::recursive_mutex lock;
    int sessions = 0;
    VSTGUI::SharedPointer<EditorRunLoop> loop;
    cairo_device_t* device = nullptr;  // of the present connection; held so that it can be finished with it
};

Toolkit& TheToolkit() {
    static Lasting<Toolkit> toolkit;
    return toolkit.value;
}

xcb_visualtype_t* RootVisual(const xcb_screen_t* screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth))
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual))
            if (visual.data->visual_id == screen->root_visual) return visual.data;
    return nullptr;
}

// Asked for while the connection lives: after the display has gone, no surface would yield it.
cairo_device_t* DeviceOf(xcb_connection_t* connection) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    cairo_surface_t* surface = cairo_xcb_surface_create(connection, screen->root, RootVisual(screen), 1, 1);
    cairo_device_t* device = cairo_device_reference(cairo_surface_get_device(surface));
    cairo_surface_destroy(surface);
    return device;
}

}  // namespace

std::recursive_mutex& ToolkitLock() {
    return TheToolkit().lock;
}

std::unique_ptr<ToolkitSession> ToolkitSession::Begin() {
    Toolkit& toolkit = TheToolkit();
    if (toolkit.sessions == 0) {
        UseOwnFonts();
        VSTGUI::init(nullptr);
        toolkit.loop = VSTGUI::makeOwned<EditorRunLoop>();
        VSTGUI::X11::RunLoop::init(toolkit.loop);
        if (ConnectionLost()) {
            End();
            return nullptr;
        }
        toolkit.device = DeviceOf(DisplayConnection());
    }
    ++toolkit.sessions;
    return std::unique_ptr<ToolkitSession>(new ToolkitSession);
}

ToolkitSession::~ToolkitSession() {
    Toolkit& toolkit = TheToolkit();
    if (--toolkit.sessions > 0) return;
    cairo_device_finish(toolkit.device);
    cairo_device_destroy(toolkit.device);
    toolkit.device = nullptr;
    End();
}

void ToolkitSession::End() {
    VSTGUI::X11::RunLoop::exit();
    VSTGUI::exit();
    TheToolkit().loop = nullptr;
}

void ToolkitSession::Pump() {
    DisplayLoop().pump();
}

void ToolkitSession::PumpTimers() {
    DisplayLoop().pump();
}

bool ToolkitSession::ConnectionLost() {
    return xcb_connection_has_error(DisplayConnection()) != 0;
}

EditorRunLoop& DisplayLoop() {
    return *TheToolkit().loop;
}

xcb_connection_t* DisplayConnection() {
    return VSTGUI::X11::RunLoop::instance().getXcbConnection();
}
