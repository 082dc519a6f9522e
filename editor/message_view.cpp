#include "editor/message_view.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "editor/line_breaks.h"
#include "editor/look.h"
#include "vst2/records.h"
#include "vstgui/lib/cdrawcontext.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/cgradient.h"
#include "vstgui/lib/cgraphicspath.h"
#include "vstgui/lib/controls/cbuttons.h"
#include "vstgui/lib/controls/ctextlabel.h"
#include "vstgui/lib/events.h"
#include "vstgui/lib/platform/iplatformfont.h"

using namespace VSTGUI;

namespace {

constexpr CCoord panelWidth = 320, margin = 16, corner = 8;
constexpr CCoord captionTop = 10, lineHeight = 17, buttonWidth = 80, buttonHeight = 24, buttonGap = 12;
constexpr std::size_t mostLines = 12;  // what the window's height takes

// The ring of the focus has corners: with a round one, the system's drawing library loses memory each time.
class CMessageButton : public CTextButton {
public:
    using CTextButton::CTextButton;
    bool getFocusPath(CGraphicsPath& path) override {
        CRect ring = getViewSize();
        path.addRect(ring);
        ring.extend(getFrame()->getFocusWidth(), getFrame()->getFocusWidth());
        path.addRect(ring);
        return true;
    }

    CLASS_METHODS_NOCOPY(CMessageButton, CTextButton)
};

struct Paragraph {
    std::string text;  // with a line break where the panel's width asks for one
    CCoord height = 0;
};

// The toolkit's own wrapping clips a hyphen at the end of a line.
Paragraph Broken(const std::string& text, CFontDesc& font) {
    const auto painter = font.getFontPainter();
    const auto measure = [&](std::string_view piece) {
        return painter ? painter->getStringWidth(nullptr, UTF8String(std::string(piece)).getPlatformString())
                       : 0;
    };
    const std::vector<std::string> lines = BreakLines(text, panelWidth - 2 * margin, measure);
    Paragraph paragraph;
    for (const std::string& line : lines) paragraph.text += line + '\n';
    paragraph.height = lineHeight * static_cast<CCoord>(std::min(lines.size(), mostLines));
    return paragraph;
}

constexpr std::uint8_t veilAlpha = 110;

CMultiLineTextLabel* Text(const CRect& area, const std::string& text, CFontDesc* font) {
    auto* label = new CMultiLineTextLabel(area);
    label->setText(text.c_str());
    label->setFont(font);
    label->setFontColor(ColorOf(palette::text));
    label->setTransparency(true);
    label->setStyle(CParamDisplay::kNoFrame);
    label->setLineLayout(CMultiLineTextLabel::LineLayout::clip);
    label->setHoriAlign(kLeftText);
    label->setMouseEnabled(false);
    return label;
}

}  // namespace

CMessageView::CMessageView(const CRect& size, const std::string& text, const std::string& caption,
                           std::function<void()> whenDismissed)
    : CViewContainer(size), dismissed(std::move(whenDismissed)) {
    const auto bold = EditorFont(13, kBoldFace), plain = EditorFont(13);
    const Paragraph head = Broken(caption, *bold), body = Broken(text, *plain);
    const CCoord textTop = captionTop + head.height + buttonGap;
    panel = CRect(0, 0, panelWidth, textTop + body.height + 2 * buttonGap + buttonHeight);
    panel.centerInside(size);
    panel.makeIntegral();
    const CCoord left = panel.left + margin, right = panel.right - margin, top = panel.top;
    addView(Text(CRect(left, top + captionTop, right, top + captionTop + head.height), head.text, bold));
    addView(Text(CRect(left, top + textTop, right, top + textTop + body.height), body.text, plain));

    const CCoord buttonTopEdge = panel.bottom - buttonGap - buttonHeight;
    auto* button = new CMessageButton(
        CRect(right - buttonWidth, buttonTopEdge, right, buttonTopEdge + buttonHeight), this, 0, "OK");
    button->setFont(EditorFont(13, kBoldFace));
    button->setTextColor(kWhiteCColor);
    button->setTextColorHighlighted(kWhiteCColor);
    button->setFrameColor(ColorOf(palette::onFrame));
    button->setFrameColorHighlighted(ColorOf(palette::onFrame));
    const CColor lit = ColorOf(palette::onTop), shaded = ColorOf(palette::onBottom);
    button->setGradient(owned(CGradient::create(0, 1, lit, shaded)));
    button->setGradientHighlighted(owned(CGradient::create(0, 1, shaded, lit)));
    button->setRoundRadius(4);
    addView(button);
    setTransparency(false);
}

void CMessageView::drawBackgroundRect(CDrawContext* context, const CRect& /*updateRect*/) {
    context->setDrawMode(kAntiAliasing);
    context->setFillColor(ColorOf(palette::veil, veilAlpha));
    CRect everything = getViewSize();
    everything.originize();
    context->drawRect(everything, kDrawFilled);
    CRect box = panel;
    box.inset(0.5, 0.5);
    const auto path = owned(context->createRoundRectGraphicsPath(box, corner));
    if (!path) return;
    context->setFillColor(ColorOf(palette::openMenu));
    context->drawGraphicsPath(path, CDrawContext::kPathFilled);
    context->setFrameColor(ColorOf(palette::frame));
    context->setLineWidth(1);
    context->drawGraphicsPath(path, CDrawContext::kPathStroked);
}

// The view may be gone when the call returns.
void CMessageView::Dismiss() {
    const auto call = std::exchange(dismissed, nullptr);
    if (call) call();
}

void CMessageView::valueChanged(CControl* control) {
    if (control->getValue() != 0) Dismiss();
}

void CMessageView::onKeyboardEvent(KeyboardEvent& event) {
    if (event.type != EventType::KeyDown) return;
    if (event.virt != VirtualKey::Return && event.virt != VirtualKey::Enter &&
        event.virt != VirtualKey::Escape && event.virt != VirtualKey::Space)
        return;
    event.consumed = true;
    Dismiss();
}
