#pragma once
#include "desktop/message_box.h"
#include "tests/support/test.h"

// Keeps what the user is shown, in the place of the system's box for as long as it lives. Where two threads
// show messages, a test clears `keepsTexts`.
class Messages : public IMessageBox {
public:
    Messages() { SubstituteSystemMessageBox(this); }
    ~Messages() override { SubstituteSystemMessageBox(nullptr); }
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;
    void Show(const std::string& text, const std::string& caption) override {
        if (keepsTexts) shown.push_back(caption + ": " + text);
    }

    bool keepsTexts = true;
    std::vector<std::string> shown;
};
