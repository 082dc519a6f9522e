#include "tools/host/editor_window.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xcomposite.h>
#include <cairo.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tools/host/hosted_plugin.h"
#include "tools/host/icon.h"

namespace {

cairo_status_t Append(void* bytes, const unsigned char* data, unsigned length) {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

struct PngReader {
    std::span<const unsigned char> rest;
    static cairo_status_t Read(void* self, unsigned char* data, unsigned length) {
        auto& rest = static_cast<PngReader*>(self)->rest;
        if (length > rest.size()) return CAIRO_STATUS_READ_ERROR;
        std::copy_n(rest.begin(), length, data);
        rest = rest.subspan(length);
        return CAIRO_STATUS_SUCCESS;
    }
};

// As window managers take it: width, height, then a word a pixel: alpha, red, green, blue. Xlib wants each
// word in a long. Empty where the picture cannot be read.
std::vector<unsigned long> IconWords() {
    PngReader reader{IconPng()};
    const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface(
        cairo_image_surface_create_from_png_stream(&PngReader::Read, &reader), cairo_surface_destroy);
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return {};
    const int width = cairo_image_surface_get_width(surface.get());
    const int height = cairo_image_surface_get_height(surface.get());
    std::vector<unsigned long> words = {static_cast<unsigned long>(width),
                                        static_cast<unsigned long>(height)};
    for (int y = 0; y < height; ++y) {
        const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface.get());
        const unsigned char* const row = cairo_image_surface_get_data(surface.get()) + y * stride;
        for (int x = 0; x < width; ++x) {
            std::uint32_t pixel;
            std::memcpy(&pixel, row + std::ptrdiff_t{4} * x, sizeof pixel);
            const std::uint32_t alpha = pixel >> 24;
            std::uint32_t word = alpha << 24;
            for (int shift = 0; alpha > 0 && shift < 24; shift += 8)  // cairo's colours are times alpha
                word |= std::min(255U, (pixel >> shift & 255U) * 255U / alpha) << shift;
            words.push_back(word);
        }
    }
    return words;
}

// What a desktop shows beside the title and in its lists of windows, and by what it knows the program.
void Introduce(Display* display, ::Window window, const std::string& title, XSizeHints& size) {
    std::string name = "orva-host", group = "Orva-host";
    XClassHint hint{name.data(), group.data()};
    Xutf8SetWMProperties(display, window, title.c_str(), title.c_str(), nullptr, 0, &size, nullptr, &hint);
    const auto set = [&](const char* property, const unsigned long* words, std::size_t count) {
        XChangeProperty(display, window, XInternAtom(display, property, False), XA_CARDINAL, 32,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(words),
                        static_cast<int>(count));
    };
    const auto process = static_cast<unsigned long>(getpid());
    set("_NET_WM_PID", &process, 1);
    const std::vector<unsigned long> icon = IconWords();
    set("_NET_WM_ICON", icon.data(), icon.size());
}

}  // namespace

struct EditorWindow::Window {
    Display* display = nullptr;
    ::Window id = 0;
    Atom closing = 0;
    bool ownPixels = false;  // what is drawn is kept, seen or not
    int width = 0;
    int height = 0;

    XSizeHints Hints() const {  // of one size
        XSizeHints hints{};
        hints.flags = PMinSize | PMaxSize;
        hints.min_width = hints.max_width = width;
        hints.min_height = hints.max_height = height;
        return hints;
    }
    void Resize(int newWidth, int newHeight) {
        width = newWidth;
        height = newHeight;
        XSizeHints hints = Hints();
        XSetWMNormalHints(display, id, &hints);
        XResizeWindow(display, id, static_cast<unsigned>(width), static_cast<unsigned>(height));
        XSync(display, False);
    }

    ~Window() {
        if (display == nullptr) return;
        if (id != 0) XDestroyWindow(display, id);
        XCloseDisplay(display);
    }
};

EditorWindow::EditorWindow(HostedPlugin& edited, const std::string& title, double scale)
    : plugin(edited), window(std::make_unique<Window>()) {
    if (scale != 0) plugin.SetWindowScale(scale);
    window->display = XOpenDisplay(nullptr);
    if (window->display == nullptr) throw std::runtime_error("no window: there is no X display");
    ERect* rect = nullptr;
    if (plugin.Dispatch(effEditGetRect, 0, 0, &rect) == 0 || rect == nullptr)
        throw std::runtime_error("the plug-in has no window");
    window->width = rect->right - rect->left;
    window->height = rect->bottom - rect->top;
    Display* const display = window->display;
    window->id =
        XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, static_cast<unsigned>(window->width),
                            static_cast<unsigned>(window->height), 0, 0, 0);
    XSizeHints hints = window->Hints();
    Introduce(display, window->id, title, hints);
    window->closing = XInternAtom(display, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(display, window->id, &window->closing, 1);
    // Else a picture of a window that is covered, or not quite on the screen, could not be taken.
    int event = 0, error = 0;
    window->ownPixels = XCompositeQueryExtension(display, &event, &error) != 0;
    if (window->ownPixels) XCompositeRedirectWindow(display, window->id, CompositeRedirectAutomatic);
    XMapWindow(display, window->id);
    XSync(display, False);
    plugin.sizeWindow = [this](int width, int height) { return window->Resize(width, height), true; };
    // A window's number is what hosts hand over as a pointer.
    if (plugin.Dispatch(effEditOpen, 0, 0, reinterpret_cast<void*>(window->id)) == 0)  // NOLINT
        throw std::runtime_error("the plug-in's window does not open");
}

EditorWindow::~EditorWindow() {
    plugin.Dispatch(effEditClose);
    plugin.sizeWindow = nullptr;
}

bool EditorWindow::UserHasClosed() {
    bool closed = false;
    while (XPending(window->display) > 0) {
        XEvent event;
        XNextEvent(window->display, &event);
        closed = closed || (event.type == ClientMessage &&
                            static_cast<Atom>(event.xclient.data.l[0]) == window->closing);
    }
    return closed;
}

void EditorWindow::Run(const std::function<bool()>& step, std::chrono::milliseconds pause) {
    while (!UserHasClosed() && step()) {
        std::this_thread::sleep_for(pause);
        plugin.Dispatch(effEditIdle);
    }
}

std::string EditorWindow::Picture() {
    const Drawable drawn =
        window->ownPixels ? XCompositeNameWindowPixmap(window->display, window->id) : window->id;
    const std::unique_ptr<XImage, void (*)(XImage*)> image(
        XGetImage(window->display, drawn, 0, 0, static_cast<unsigned>(window->width),
                  static_cast<unsigned>(window->height), AllPlanes, ZPixmap),
        [](XImage* gone) {
            if (gone != nullptr) XDestroyImage(gone);
        });
    if (window->ownPixels) XFreePixmap(window->display, drawn);
    if (image == nullptr || image->bits_per_pixel != 32)
        throw std::runtime_error("the window cannot be read from this display");
    const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface(
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(image->data), CAIRO_FORMAT_RGB24,
                                            image->width, image->height, image->bytes_per_line),
        cairo_surface_destroy);
    std::string bytes;
    if (cairo_surface_write_to_png_stream(surface.get(), Append, &bytes) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("the picture cannot be written");
    return bytes;
}
