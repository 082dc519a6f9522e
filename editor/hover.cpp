#include "editor/hover.h"

#include <algorithm>

#include "editor/line_breaks.h"
#include "editor/look.h"
#include "vstgui/lib/cdrawcontext.h"
#include "vstgui/lib/cgraphicspath.h"
#include "vstgui/lib/platform/iplatformfont.h"

using namespace VSTGUI;

// Lies over others, and takes no click from them.
class OverlayView : public CView {
public:
    OverlayView() : CView(CRect()) {
        setMouseEnabled(false);
        setTransparency(true);
        setVisible(false);
    }
};

namespace {

constexpr CCoord textWidth = 190, margin = 5, lineHeight = 14, cornerRadius = 3;
constexpr CCoord belowPointer = 18, abovePointer = 6;

class TintView : public OverlayView {
public:
    void draw(CDrawContext* context) override {
        constexpr std::uint8_t alpha = 36;
        context->setDrawMode(kAntiAliasing);
        if (const auto path = owned(context->createRoundRectGraphicsPath(getViewSize(), cornerRadius))) {
            context->setFillColor(ColorOf(palette::loud, alpha));
            context->drawGraphicsPath(path, CDrawContext::kPathFilled);
        }
        setDirty(false);
    }
};

}  // namespace

class PlateView : public OverlayView {
public:
    // Gives the size that the text takes.
    CPoint SetText(const std::string& text) {
        const auto painter = font->getFontPainter();
        const auto measure = [&](std::string_view piece) {
            return painter
                       ? painter->getStringWidth(nullptr, UTF8String(std::string(piece)).getPlatformString())
                       : 0;
        };
        lines = BreakLines(text, textWidth, measure);
        CCoord widest = 0;
        for (const std::string& line : lines) widest = std::max(widest, measure(line));
        return {widest + 2 * margin, lineHeight * static_cast<CCoord>(lines.size()) + margin};
    }

    void draw(CDrawContext* context) override {
        context->setDrawMode(kAntiAliasing);
        CRect box = getViewSize();
        box.inset(0.5, 0.5);
        if (const auto path = owned(context->createRoundRectGraphicsPath(box, cornerRadius))) {
            context->setFillColor(ColorOf(palette::openMenu));
            context->drawGraphicsPath(path, CDrawContext::kPathFilled);
            context->setFrameColor(ColorOf(palette::panelFrame));
            context->setLineWidth(1);
            context->drawGraphicsPath(path, CDrawContext::kPathStroked);
        }
        context->setFont(font);
        context->setFontColor(ColorOf(palette::text));
        CRect row(box.left + margin, box.top + margin / 2, box.right, 0);
        row.setHeight(lineHeight);
        for (const std::string& line : lines) {
            context->drawString(UTF8String(line).getPlatformString(), row, kLeftText);
            row.offset(0, lineHeight);
        }
        setDirty(false);
    }

private:
    SharedPointer<CFontDesc> font = EditorFont(11);
    std::vector<std::string> lines;
};

Hover::Hover(CViewContainer& itsWindow) : window(itsWindow), tint(new TintView), plate(new PlateView) {
    window.addView(tint);
    window.addView(plate);
}

void Hover::PointAt(const CPoint& where, const CRect* control) {
    pointer = where;
    Disturb();
    steps = 0;
    isOverControl = control != nullptr;
    if (isOverControl && tint->getViewSize() != *control) {
        tint->invalid();
        tint->setViewSize(*control);
        tint->setMouseableArea(*control);
        tint->invalid();
    }
    tint->setVisible(isOverControl);
}

void Hover::Leave() {
    PointAt(pointer, nullptr);
    steps = restingSteps;
}

void Hover::Disturb() {
    plate->setVisible(false);
    steps = restingSteps;
}

bool Hover::Step() {
    return steps < restingSteps && ++steps == restingSteps;
}

// Below the pointer, or where that leaves the window, above it.
void Hover::Say(const std::string& text) {
    if (text.empty()) return;
    CRect area(pointer, plate->SetText(text));
    area.offset(0, belowPointer);
    if (area.bottom > window.getHeight()) area.offset(0, -area.getHeight() - belowPointer - abovePointer);
    area.offset(std::min(0.0, window.getWidth() - area.right), 0);
    area.offset(std::max(0.0, -area.left), 0);
    plate->setViewSize(area);
    plate->setVisible(true);
    plate->invalid();
}
