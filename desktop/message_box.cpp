#include "desktop/message_box.h"

#include <atomic>

namespace {

std::atomic<IMessageBox*> substitute{nullptr};

}  // namespace

void MessageBox::Show(const std::string& text, const std::string& caption) {
    {
        const Locked hold(lock);
        if (window != nullptr && window->TakeMessage(text, caption)) return;
    }
    SystemMessageBox().Show(text, caption);
}

void MessageBox::SetWindow(IMessageWindow* newWindow) {
    const Locked hold(lock);
    window = newWindow;
}

IMessageBox& SystemMessageBox() {
    IMessageBox* const other = substitute.load(std::memory_order_acquire);
    return other != nullptr ? *other : DesktopMessageBox();
}

void SubstituteSystemMessageBox(IMessageBox* box) {
    substitute.store(box, std::memory_order_release);
}
