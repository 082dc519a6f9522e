#include "editor/frame_window.h"

#include <xcb/xcb.h>

#include "editor/linux/display.h"
#include "editor/linux/holder_window.h"
#include "vst2/records.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/platform/iplatformframe.h"

namespace {

class HeldFrame : public FrameWindow {
public:
    explicit HeldFrame(std::unique_ptr<HolderWindow> itsHolder) : holder(std::move(itsHolder)) {}

    void Resize(std::int32_t width, std::int32_t height) override {
        holder->Resize(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
    }
    std::uint32_t TopLevel() const override { return holder->TopLevel(); }
    bool Own(std::uint32_t process) const override { return holder->Own(process); }

private:
    std::unique_ptr<HolderWindow> holder;
};

}  // namespace

std::unique_ptr<FrameWindow> FrameWindow::Open(VSTGUI::CFrame& frame, void* parent) {
    const auto window = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(parent));
    if (window == 0) return nullptr;
    const VSTGUI::CRect& size = frame.getViewSize();
    auto holder = HolderWindow::Make(DisplayConnection(), window, static_cast<std::uint16_t>(size.getWidth()),
                                     static_cast<std::uint16_t>(size.getHeight()));
    if (!holder) return nullptr;

    VSTGUI::X11::FrameConfig config;
    config.runLoop = VSTGUI::shared(static_cast<VSTGUI::X11::IRunLoop*>(&DisplayLoop()));
    // The toolkit takes a window's number as a pointer. NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto place = reinterpret_cast<void*>(static_cast<std::uintptr_t>(holder->Id()));
    if (!frame.open(place, VSTGUI::PlatformType::kX11EmbedWindowID, &config)) return nullptr;
    if (const auto* native = dynamic_cast<VSTGUI::X11::IX11Frame*>(frame.getPlatformFrame())) {
        xcb_map_window(DisplayConnection(), native->getX11WindowID());
        xcb_flush(DisplayConnection());
    }
    return std::make_unique<HeldFrame>(std::move(holder));
}
