#include "desktop/message_box.h"

#include "base/lasting.h"
#include "base/windows/wide.h"
#include "desktop/windows/module.h"

namespace {

class SystemBox : public IMessageBox {
public:
    void Show(const std::string& text, const std::string& caption) override {
        RunBeside([text = Wide(text), caption = Wide(caption)] {
            MessageBoxW(nullptr, text.c_str(), caption.c_str(), MB_OK | MB_ICONERROR | MB_SETFOREGROUND);
        });
    }
};

}  // namespace

IMessageBox& DesktopMessageBox() {
    static Lasting<SystemBox> own;
    return own.value;
}
