#include "editor/aeff_gui_editor.h"

#include <chrono>
#include <thread>
#include <utility>

#include "base/scoped.h"
#include "vst2/records.h"
#include "vstgui/lib/events.h"

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

AEffGUIEditor::AEffGUIEditor(std::int32_t width, std::int32_t height)
    : layoutWidth(width), layoutHeight(height) {
    rect = RectAt(size);
}

AEffGUIEditor::~AEffGUIEditor() {
    const std::lock_guard locked(ToolkitLock());
    AEffGUIEditor::close();
}

ERect AEffGUIEditor::RectAt(std::int32_t percent) const {
    ERect result;
    result.right = static_cast<std::int16_t>(layoutWidth * percent / 100);
    result.bottom = static_cast<std::int16_t>(layoutHeight * percent / 100);
    return result;
}

void AEffGUIEditor::SetSize(std::int32_t percent) {
    if (percent == size) return;
    size = percent;
    rect = RectAt(size);
    if (frame == nullptr) return;
    place->Resize(rect.right, rect.bottom);
    frame->setZoom(size / 100.0);
}

bool AEffGUIEditor::getRect(ERect** editorRect) {
    if (editorRect == nullptr) return false;
    *editorRect = &rect;
    return true;
}

bool AEffGUIEditor::open(void* parent) {
    const std::lock_guard locked(ToolkitLock());
    AEffGUIEditor::close();
    if (parent == nullptr) return false;
    session = ToolkitSession::Begin();
    if (!session) return false;
    frame = new VSTGUI::CFrame(Layout(), this);
    if (size != 100) frame->setZoom(size / 100.0);
    place = FrameWindow::Open(*frame, parent);
    if (place) return true;
    frame->forget();
    frame = nullptr;
    session.reset();
    return false;
}

void AEffGUIEditor::close() {
    const std::lock_guard locked(ToolkitLock());
    if (frame == nullptr) return;
    VSTGUI::CFrame* closing = frame;
    frame = nullptr;
    closing->close();
    place.reset();
    session.reset();
}

void AEffGUIEditor::idle() {
    if (frame != nullptr) frame->idle();
}

void AEffGUIEditor::PumpEvents() {
    if (frame == nullptr) return;
    ToolkitSession::Pump();
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
        ToolkitSession::PumpTimers();
    }
}

bool AEffGUIEditor::dispatchKey(const VstKeyCode& key, bool down) {
    const std::unique_lock locked(ToolkitLock(), std::try_to_lock);
    if (!locked || frame == nullptr) return false;
    VSTGUI::KeyboardEvent event = EventOf(key, down);
    const auto keep = VSTGUI::shared(frame);
    const ScopedValue fromHost(keyIsFromHost, true);
    keep->dispatchEvent(event);
    return event.consumed;
}

void AEffGUIEditor::LeaveToHost(VSTGUI::KeyboardEvent& event) {
    if (keyIsFromHost || place == nullptr) return;
    const std::pair<VSTGUI::VirtualKey, char32_t> key(event.virt, event.character);
    if (event.type == VSTGUI::EventType::KeyDown)
        passedKey = key;
    else if (std::exchange(passedKey, {}) != key)
        return;  // it went down here
    event.consumed = place->PassKey(event);
}

bool AEffGUIEditor::onKeyDown(const VstKeyCode& key) {
    return dispatchKey(key, true);
}
bool AEffGUIEditor::onKeyUp(const VstKeyCode& key) {
    return dispatchKey(key, false);
}
