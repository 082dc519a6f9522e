#pragma once
#include <string>
#include <vector>

#include "platform/message_box.h"

// Keeps what the user is told, in the place of the system's box for as long as it lives.
class Messages : public IMessageBox {
public:
    Messages() { SubstituteSystemMessageBox(this); }
    ~Messages() override { SubstituteSystemMessageBox(nullptr); }
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;
    void Show(const std::string& text, const std::string& caption) override {
        shown.push_back(caption + ": " + text);
    }
    std::vector<std::string> shown;
};
