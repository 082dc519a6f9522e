#include <xcb/xcb.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <string_view>

#include "base/linux/owned.h"
#include "editor/window_size.h"

namespace {

constexpr double usualDpi = 96;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

// Of lines like "Xft.dpi:\t192", which desktops write for the programs of the display.
double DpiOf(std::string_view resources) {
    constexpr std::string_view name = "Xft.dpi:";
    std::size_t at = resources.find(name);
    while (at != 0 && at != std::string_view::npos && resources[at - 1] != '\n')
        at = resources.find(name, at + 1);
    if (at == std::string_view::npos) return usualDpi;
    resources.remove_prefix(at + name.size());
    resources.remove_prefix(std::min(resources.find_first_not_of(" \t"), resources.size()));
    double dpi = usualDpi;
    std::from_chars(resources.data(), resources.data() + resources.size(), dpi);
    return dpi;
}

}  // namespace

double DesktopScale() {
    const std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get()) != 0) return 1;
    constexpr std::uint32_t mostWords = 16384;
    const auto asked = xcb_get_property(connection.get(), 0,
                                        xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root,
                                        XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 0, mostWords);
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection.get(), asked, nullptr));
    if (!reply) return 1;
    return DpiOf({static_cast<const char*>(xcb_get_property_value(reply.get())),
                  static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))}) /
           usualDpi;
}
