#include "editor/value_field.h"

#include <utility>

#include "editor/look.h"

using namespace VSTGUI;

CValueField::CValueField(const CRect& size, const std::string& initial,
                         std::function<void(const std::string&)> ended)
    : CTextEdit(size, nullptr, -1, initial.c_str()), before(initial), whenEnded(std::move(ended)) {
    setFont(EditorFont(12));
    setFontColor(ColorOf(palette::text));
    setBackColor(ColorOf(palette::box));
    setFrameColor(ColorOf(palette::text));
    registerTextEditListener(this);
}

CValueField::~CValueField() noexcept {
    unregisterTextEditListener(this);
}

void CValueField::onTextEditPlatformControlLostFocus(CTextEdit*) {
    const std::string typed = getText().getString();
    if (const auto call = std::exchange(whenEnded, nullptr)) call(typed == before ? "" : typed);
}
