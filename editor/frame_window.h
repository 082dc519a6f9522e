#pragma once
#include <cstdint>
#include <memory>

namespace VSTGUI {
class CFrame;
struct KeyboardEvent;
}  // namespace VSTGUI

// The frame's place within the host's window, as the system at hand makes one. Its destruction comes after
// the frame's close and leaves nothing on the display.
//
// Threads: [ui], while a session of the toolkit lasts.
class FrameWindow {
public:
    // Opens the frame at the upper left corner of the host's window `parent`; none when there is no such
    // window, or when the toolkit cannot draw to it.
    static std::unique_ptr<FrameWindow> Open(VSTGUI::CFrame& frame, void* parent);
    FrameWindow() = default;
    virtual ~FrameWindow() = default;
    FrameWindow(const FrameWindow&) = delete;
    FrameWindow& operator=(const FrameWindow&) = delete;

    virtual void Resize(std::int32_t width, std::int32_t height) = 0;  // ahead of the frame's own
    // The host's window around ours, as the desktop knows it; 0 where it is gone.
    virtual std::uint32_t TopLevel() const = 0;
    // Puts the windows of a process above that one: for a program that does not take its owner's number.
    // False while it has none.
    virtual bool Own(std::uint32_t process) const = 0;
    // Gives a key that nothing here uses to the host's window, which does not see it while ours has the
    // keyboard. False where the toolkit does so.
    virtual bool PassKey(const VSTGUI::KeyboardEvent& event) const = 0;
};
