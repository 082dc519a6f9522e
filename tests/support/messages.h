#pragma once
#include "desktop/message_box.h"
#include "tests/support/test.h"

// Keeps what the user is shown, in the place of the system's box for as long as it lives. Where two threads
// show messages, a test clears `keepsTexts` and reads the count alone.
class Messages : public IMessageBox {
public:
    Messages() { SubstituteSystemMessageBox(this); }
    ~Messages() override { SubstituteSystemMessageBox(nullptr); }
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;
    void Show(const std::string& text, const std::string& caption) override {
        count.fetch_add(1, std::memory_order_relaxed);
        if (keepsTexts) shown.push_back(caption + ": " + text);
    }
    std::vector<std::string> Taken() { return std::exchange(shown, {}); }

    bool keepsTexts = true;
    std::vector<std::string> shown;
    std::atomic<long> count{0};
};
