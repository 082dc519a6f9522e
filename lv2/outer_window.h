#pragma once
#include <cstdint>
#include <memory>

struct xcb_connection_t;

// The window that the editor's own opens in: inside the host's, or for a host without one on the desktop. A
// connection to the display of its own keeps it apart from the toolkit's life.
//
// Threads: [ui]. Errors of the display are never fatal; a lost one counts as closed.
class OuterWindow {
public:
    // Inside the window `parent`, or with 0 on the desktop; none when that cannot be had.
    static std::unique_ptr<OuterWindow> Make(std::uint32_t parent, std::uint16_t width, std::uint16_t height);
    ~OuterWindow();
    OuterWindow(const OuterWindow&) = delete;
    OuterWindow& operator=(const OuterWindow&) = delete;

    std::uint32_t Id() const { return id; }
    void Show();
    void Resize(std::uint16_t width, std::uint16_t height);
    bool UserHasClosed();  // by the window manager, or the display has gone

private:
    explicit OuterWindow(xcb_connection_t* itsConnection) : connection(itsConnection) {}
    bool Create(std::uint32_t parent, std::uint16_t width, std::uint16_t height);
    bool Arrived();
    void SetHints(std::uint32_t width, std::uint32_t height);
    std::uint32_t Atom(const char* name);

    xcb_connection_t* connection;
    std::uint32_t id = 0;
    std::uint32_t closing = 0;  // the window manager's word for it
    bool isOnItsOwn = true;     // rather than in a host's
};
