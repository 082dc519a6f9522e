#include "editor/label.h"

#include "base/text.h"
#include "editor/look.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cstring.h"
#include "vstgui/lib/events.h"

using namespace VSTGUI;

CLabel::CLabel(const CRect& size, IControlListener* clickListener, std::int32_t controlTag)
    : CParamDisplay(size, nullptr, kNoFrame) {
    setListener(clickListener);
    setTag(controlTag);
    setFontColor(ColorOf(palette::text));
    setTransparency(true);
}

void CLabel::setText(const char* newText) {
    CopyText(text, textSize, newText != nullptr ? newText : "");
    setDirty();
}

void CLabel::draw(CDrawContext* context) {
    if (visible) {
        if (backgroundBitmap != nullptr)
            backgroundBitmap->draw(context, getViewSize(), backgroundOrigin, float(backgroundAlpha) / 255.0F);
        drawPlatformText(context, UTF8String(text).getPlatformString());
    }
    setDirty(false);
}

void CLabel::onMouseDownEvent(MouseDownEvent& event) {
    if (getListener() == nullptr || !event.buttonState.isLeft()) return;
    valueChanged();
    event.ignoreFollowUpMoveAndUpEvents(true);
    event.consumed = true;
}
