#include "editor/frame_window.h"

#include <windows.h>

#include "vst2/records.h"
#include "vstgui/lib/cframe.h"

namespace {

class ChildFrame : public FrameWindow {
public:
    explicit ChildFrame(HWND itsParent) : parent(itsParent) {}

    void Resize(std::int32_t, std::int32_t) override {}  // the frame's window is the only one
    // The number of a window fits 32 bits, so that 32-bit and 64-bit programs can exchange it.
    std::uint32_t TopLevel() const override {
        return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(GetAncestor(parent, GA_ROOT)));
    }
    bool PassKey(const VSTGUI::KeyboardEvent&) const override { return false; }
    bool Own(std::uint32_t) const override { return true; }  // the system's dialog has taken its owner

private:
    HWND parent;
};

}  // namespace

std::unique_ptr<FrameWindow> FrameWindow::Open(VSTGUI::CFrame& frame, void* parent) {
    const auto window = static_cast<HWND>(parent);
    if (!IsWindow(window) || !frame.open(parent, VSTGUI::PlatformType::kHWND)) return nullptr;
    return std::make_unique<ChildFrame>(window);
}
