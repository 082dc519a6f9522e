#pragma once
#include <functional>
#include <string>

#include "vst2/records.h"
#include "vstgui/lib/controls/ctextedit.h"
#include "vstgui/lib/controls/itexteditlistener.h"

// A field to type a value into, in place of its control. It ends when it loses the keyboard: by Return, by a
// click elsewhere, or by Escape, which leaves the text as it was.
//
// Threads: [ui].
class CValueField : public VSTGUI::CTextEdit, public VSTGUI::TextEditListenerAdapter {
public:
    // `ended` is called once, with the text, or none where it has not changed. The field is still in use
    // then, and must go later.
    CValueField(const VSTGUI::CRect& size, const std::string& initial,
                std::function<void(const std::string& text)> ended);
    ~CValueField() noexcept override;

    void onTextEditPlatformControlLostFocus(VSTGUI::CTextEdit* field) override;

    CLASS_METHODS_NOCOPY(CValueField, CTextEdit)

private:
    std::string before;
    std::function<void(const std::string&)> whenEnded;
};
