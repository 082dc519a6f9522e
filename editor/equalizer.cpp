#include "editor/equalizer.h"

#include <algorithm>

#include "editor/look.h"
#include "vst2/records.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/events.h"

using namespace VSTGUI;

namespace {

constexpr std::int32_t bandsPerOctave = 12;

// A gap of one pixel stands before the first bar and after each one.
std::int32_t BarWidthFor(const CRect& size) {
    return (static_cast<std::int32_t>(size.getWidth()) - bandCount - 1) / bandCount;
}

}  // namespace

CEqualizer::CEqualizer(const CRect& size, IControlListener* controlListener, std::int32_t controlTag)
    : CBufferedControl(size, controlListener, controlTag),
      barHeights(bandCount),
      barWidth(BarWidthFor(size)),
      stroke(static_cast<std::int32_t>(size.getWidth()), static_cast<std::int32_t>(size.getHeight()),
             barWidth + 1) {
    setMax(bandCount - 1);
    setWantsFocus(true);
}

void CEqualizer::ChooseBar(std::int32_t bar) {
    chosenBar = std::clamp(bar, 0, bandCount - 1);
    invalid();
}

void CEqualizer::setBarHeight(std::int32_t bar, std::int32_t pixels) {
    barHeights[static_cast<std::size_t>(bar)] = pixels;
    setValue(static_cast<float>(bar));
    valueChanged();
}

std::int32_t CEqualizer::BarAt(const CPoint& where) const {
    if (!getViewSize().pointInside(where)) return -1;
    const std::int32_t bar = static_cast<std::int32_t>(where.x - getViewSize().left) / (barWidth + 1);
    return bar < bandCount ? bar : -1;
}

void CEqualizer::draw(CDrawContext* context) {
    if (bufferIsStale) Redraw();
    CBufferedControl::draw(context);
    if (getFrame()->getFocusView() != this) return;
    context->setDrawMode(kAliasing);
    context->setFillColor(ColorOf(palette::text));
    const CRect& area = getViewSize();
    const CCoord left = area.left + (barWidth + 1) * chosenBar;
    for (const CCoord x : {left, left + barWidth + 1})
        context->drawRect(CRect(x, area.top, x + 1, area.bottom), kDrawFilled);
}

void CEqualizer::Redraw() {
    createBuffers();
    if (!offscreen) return;
    bufferIsStale = false;
    const CCoord width = getWidth(), height = getHeight();
    const CRect all(0, 0, width, height);

    DrawInto(*offscreen, [&] {
        const CView* parent =
            getParentView();  // its picture shows through, as if the control were transparent
        if (CBitmap* ground = parent ? parent->getBackground() : nullptr)
            ground->draw(offscreen, all, getViewSize().getTopLeft());

        const auto fill = [this](const CColor& color, const CRect& area) {
            offscreen->setFillColor(color);
            offscreen->drawRect(area, kDrawFilled);
        };
        fill(gridColor, CRect(0, 0, width, 1));
        fill(gridColor, CRect(0, height - 1, width, height));
        fill(gridColor, CRect(0, 0, 1, height));
        fill(gridColor, CRect(width - 1, 0, width, height));
        for (std::int32_t bar = bandsPerOctave; bar < bandCount; bar += bandsPerOctave) {
            const CCoord x = (barWidth + 1) * bar;
            fill(gridColor, CRect(x, 0, x + 1, height));
        }
        for (std::int32_t bar = 0; bar < bandCount; ++bar) {
            const CCoord x = (barWidth + 1) * bar + 1;
            fill(barColor,
                 CRect(x, height - barHeights[static_cast<std::size_t>(bar)] - 2, x + barWidth, height - 1));
        }
    });
}

// The button held, every move belongs to this view, inside or out.
void CEqualizer::Follow(const MouseEvent& event) {
    const CRect& area = getViewSize();
    stroke.MoveTo(static_cast<std::int32_t>(event.mousePosition.x - area.left),
                  static_cast<std::int32_t>(event.mousePosition.y - area.top),
                  [this](std::int32_t bar, std::int32_t pixels) { setBarHeight(bar, pixels); });
    if (const std::int32_t bar = BarAt(event.mousePosition); bar >= 0) chosenBar = bar;
    setDirty();
    invalid();
}

void CEqualizer::FinishStroke() {
    if (!stroke.IsActive()) return;
    stroke.End();
    endEdit();
}

void CEqualizer::onMouseDownEvent(MouseDownEvent& event) {
    if (!event.buttonState.isLeft()) return;
    stroke.Begin();
    beginEdit();
    Follow(event);
    event.consumed = true;
}

void CEqualizer::onMouseMoveEvent(MouseMoveEvent& event) {
    if (!stroke.IsActive()) return;
    Follow(event);
    event.consumed = true;
}

void CEqualizer::onMouseUpEvent(MouseUpEvent& event) {
    if (!stroke.IsActive()) return;
    Follow(event);
    FinishStroke();
    event.consumed = true;
}

void CEqualizer::onMouseCancelEvent(MouseCancelEvent& event) {
    if (!stroke.IsActive()) return;
    FinishStroke();
    event.consumed = true;
}
