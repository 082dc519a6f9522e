#pragma once
#include <cstdint>
#include <memory>

struct xcb_connection_t;

// A window of our own inside the host's: the toolkit's window lives in it and goes with it. It has the
// screen's own visual, without which a host's window with an alpha channel would show nothing, and the
// toolkit never takes its windows away by itself.
//
// Threads: [ui].
class HolderWindow {
public:
    // Inside the window `parent`, at its upper left corner; none when there is no such window, or when it is
    // on a screen that the toolkit does not draw to. The colour, 0xRRGGBB, shows until the toolkit has drawn.
    static std::unique_ptr<HolderWindow> Make(xcb_connection_t* connection, std::uint32_t parent,
                                              std::uint16_t width, std::uint16_t height,
                                              std::uint32_t colour);
    ~HolderWindow();  // its windows are gone from the display, if the host's did not take them along already
    HolderWindow(const HolderWindow&) = delete;
    HolderWindow& operator=(const HolderWindow&) = delete;

    std::uint32_t Id() const { return id; }
    void Resize(std::uint16_t width, std::uint16_t height);
    // The host's window around ours, as the window manager knows it, or the outermost one; 0 where it is
    // gone.
    std::uint32_t TopLevel() const;
    // Puts the windows of a process above that one, as window managers take it: for a program that does not
    // take its owner's number. False while it has none.
    bool Own(std::uint32_t process) const;
    // To the host's window, or the nearest one around it that listens to keys, in the way of a key pressed
    // there. Symbol and modifiers are the display's.
    void PassKey(std::uint32_t symbol, std::uint16_t modifiers, bool down) const;

private:
    HolderWindow(xcb_connection_t* itsConnection, std::uint32_t itsParent, std::uint32_t itsId)
        : connection(itsConnection), parent(itsParent), id(itsId) {}

    xcb_connection_t* connection;
    std::uint32_t parent;  // the host's
    std::uint32_t id;
};
