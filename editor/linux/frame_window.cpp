#include "editor/frame_window.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <utility>

#include "editor/linux/display.h"
#include "editor/linux/holder_window.h"
#include "editor/look.h"
#include "vst2/records.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/events.h"
#include "vstgui/lib/platform/iplatformframe.h"

namespace {

// The display's name of a key; 0 for one that has no letter and is none of these.
std::uint32_t SymbolOf(const VSTGUI::KeyboardEvent& event) {
    using VSTGUI::VirtualKey;
    constexpr std::pair<VirtualKey, std::uint32_t> keys[] = {
        {VirtualKey::Back, XKB_KEY_BackSpace}, {VirtualKey::Return, XKB_KEY_Return},
        {VirtualKey::Pause, XKB_KEY_Pause},    {VirtualKey::Escape, XKB_KEY_Escape},
        {VirtualKey::Space, XKB_KEY_space},    {VirtualKey::End, XKB_KEY_End},
        {VirtualKey::Home, XKB_KEY_Home},      {VirtualKey::Left, XKB_KEY_Left},
        {VirtualKey::Up, XKB_KEY_Up},          {VirtualKey::Right, XKB_KEY_Right},
        {VirtualKey::Down, XKB_KEY_Down},      {VirtualKey::PageUp, XKB_KEY_Page_Up},
        {VirtualKey::Enter, XKB_KEY_KP_Enter}, {VirtualKey::PageDown, XKB_KEY_Page_Down},
        {VirtualKey::Delete, XKB_KEY_Delete},  {VirtualKey::Insert, XKB_KEY_Insert}};
    for (const auto& [key, symbol] : keys)
        if (event.virt == key) return symbol;
    if (event.virt >= VirtualKey::F1 && event.virt <= VirtualKey::F12)
        return XKB_KEY_F1 + static_cast<std::uint32_t>(event.virt) -
               static_cast<std::uint32_t>(VirtualKey::F1);
    constexpr std::uint32_t latin1 = 0x100, unicode = 0x1000000;
    const auto character = static_cast<std::uint32_t>(event.character);
    return character < latin1 ? character : unicode | character;
}

class HeldFrame : public FrameWindow {
public:
    explicit HeldFrame(std::unique_ptr<HolderWindow> itsHolder) : holder(std::move(itsHolder)) {}

    void Resize(std::int32_t width, std::int32_t height) override {
        holder->Resize(static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
    }
    std::uint32_t TopLevel() const override { return holder->TopLevel(); }
    bool Own(std::uint32_t process) const override { return holder->Own(process); }
    bool PassKey(const VSTGUI::KeyboardEvent& event) const override {
        using VSTGUI::ModifierKey;
        std::uint16_t state = 0;
        if (event.modifiers.has(ModifierKey::Shift)) state |= XCB_MOD_MASK_SHIFT;
        if (event.modifiers.has(ModifierKey::Control)) state |= XCB_MOD_MASK_CONTROL;
        if (event.modifiers.has(ModifierKey::Alt)) state |= XCB_MOD_MASK_1;
        if (const std::uint32_t symbol = SymbolOf(event); symbol != 0)
            holder->PassKey(symbol, state, event.type == VSTGUI::EventType::KeyDown);
        return true;
    }

private:
    std::unique_ptr<HolderWindow> holder;
};

}  // namespace

std::unique_ptr<FrameWindow> FrameWindow::Open(VSTGUI::CFrame& frame, void* parent) {
    const auto window = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(parent));
    if (window == 0) return nullptr;
    const VSTGUI::CRect& size = frame.getViewSize();
    auto holder = HolderWindow::Make(DisplayConnection(), window, static_cast<std::uint16_t>(size.getWidth()),
                                     static_cast<std::uint16_t>(size.getHeight()), RgbOf(palette::groundTop));
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
