#include "editor/aeff_gui_editor.h"

#include <xcb/xcb.h>

#include <chrono>
#include <thread>

#include "vst2/records.h"
#include "vstgui/lib/events.h"
#include "vstgui/lib/platform/iplatformframe.h"

namespace {

// Bits of VstKeyCode::modifier.
constexpr unsigned shiftKey = 1, alternateKey = 2, commandKey = 4, controlKey = 8;

VSTGUI::KeyboardEvent EventOf(const VstKeyCode& key, bool down) {
    VSTGUI::KeyboardEvent event;
    event.type = down ? VSTGUI::EventType::KeyDown : VSTGUI::EventType::KeyUp;
    event.character = static_cast<char32_t>(key.character);
    constexpr auto lastVirtualKey = static_cast<unsigned char>(VSTGUI::VirtualKey::Equals);
    if (key.virt <= lastVirtualKey)
        event.virt = static_cast<VSTGUI::VirtualKey>(key.virt);  // the same numbers
    if ((key.modifier & shiftKey) != 0) event.modifiers.add(VSTGUI::ModifierKey::Shift);
    if ((key.modifier & alternateKey) != 0) event.modifiers.add(VSTGUI::ModifierKey::Alt);
    if ((key.modifier & (commandKey | controlKey)) != 0) event.modifiers.add(VSTGUI::ModifierKey::Control);
    return event;
}

}  // namespace

AEffGUIEditor::AEffGUIEditor(std::int32_t width, std::int32_t height) {
    rect.right = static_cast<std::int16_t>(width);
    rect.bottom = static_cast<std::int16_t>(height);
}

AEffGUIEditor::~AEffGUIEditor() {
    const std::lock_guard locked(ToolkitLock());
    AEffGUIEditor::close();
}

bool AEffGUIEditor::getRect(ERect** editorRect) {
    if (editorRect == nullptr) return false;
    *editorRect = &rect;
    return true;
}

bool AEffGUIEditor::open(void* parent) {
    const std::lock_guard locked(ToolkitLock());
    AEffGUIEditor::close();
    const auto window = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(parent));
    if (window == 0) return false;
    session = ToolkitSession::Begin();
    if (!session) return false;
    holder = HolderWindow::Make(ToolkitSession::Connection(), window, static_cast<std::uint16_t>(rect.right),
                                static_cast<std::uint16_t>(rect.bottom));
    if (!holder) {
        session.reset();
        return false;
    }

    frame = new VSTGUI::CFrame(VSTGUI::CRect(0, 0, rect.right, rect.bottom), this);
    VSTGUI::X11::FrameConfig config;
    config.runLoop = VSTGUI::shared(static_cast<VSTGUI::X11::IRunLoop*>(&ToolkitSession::Loop()));
    // The toolkit takes a window's number as a pointer. NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto place = reinterpret_cast<void*>(static_cast<std::uintptr_t>(holder->Id()));
    if (!frame->open(place, VSTGUI::PlatformType::kX11EmbedWindowID, &config)) {
        frame->forget();
        frame = nullptr;
        holder.reset();
        session.reset();
        return false;
    }
    if (const auto* native = dynamic_cast<VSTGUI::X11::IX11Frame*>(frame->getPlatformFrame())) {
        xcb_map_window(ToolkitSession::Connection(), native->getX11WindowID());
        xcb_flush(ToolkitSession::Connection());
    }
    return true;
}

void AEffGUIEditor::close() {
    const std::lock_guard locked(ToolkitLock());
    if (frame == nullptr) return;
    VSTGUI::CFrame* closing = frame;
    frame = nullptr;
    closing->close();
    holder.reset();
    session.reset();
}

void AEffGUIEditor::idle() {
    if (frame != nullptr) frame->idle();
}

void AEffGUIEditor::PumpEvents() {
    if (frame == nullptr) return;
    ToolkitSession::Loop().pump();
    frame->idle();
}

void AEffGUIEditor::FinishOpenedMenus() {
    if (frame == nullptr || frame->getModalView() == nullptr) return;
    VSTGUI::MouseDownEvent outside;
    outside.mousePosition = VSTGUI::CPoint(-1, -1);
    outside.buttonState.add(VSTGUI::MouseButton::Left);
    const VSTGUI::CView* menu = frame->getModalView();
    frame->dispatchEvent(outside);
    constexpr int rounds = 100;  // its fading takes some milliseconds
    for (int i = 0; i < rounds && frame->getModalView() == menu; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ToolkitSession::Loop().pump();
    }
}

bool AEffGUIEditor::dispatchKey(const VstKeyCode& key, bool down) {
    const std::lock_guard locked(ToolkitLock());
    if (frame == nullptr) return false;
    VSTGUI::KeyboardEvent event = EventOf(key, down);
    const auto keep = VSTGUI::shared(frame);
    keep->dispatchEvent(event);
    return event.consumed;
}

bool AEffGUIEditor::onKeyDown(const VstKeyCode& key) {
    return dispatchKey(key, true);
}
bool AEffGUIEditor::onKeyUp(const VstKeyCode& key) {
    return dispatchKey(key, false);
}
