#include "editor/keyboard.h"

#include "editor/level_column.h"
#include "editor/look.h"
#include "vstgui/lib/cdrawcontext.h"

using namespace VSTGUI;

namespace {

constexpr CCoord blackKeyWidth = 5;

bool IsBlack(std::int32_t band) {
    const std::int32_t pitch = band % 12;  // from C
    return pitch == 1 || pitch == 3 || pitch == 6 || pitch == 8 || pitch == 10;
}

}  // namespace

CKeyboard::CKeyboard(const CRect& size) : CView(size) {
    setTransparency(true);
    setMouseEnabled(false);
}

void CKeyboard::update(const std::vector<unsigned char>& levels) {
    std::bitset<bandCount> now;
    for (std::size_t band = 0; band < levels.size() && band < bandCount; ++band)
        now[band] = levels[band] == soundingEntry;
    if (now == sounding) return;
    sounding = now;
    invalid();
}

std::int32_t CKeyboard::BandAt(CCoord y) const {
    const CRect& area = getViewSize();
    if (y < area.top || y >= area.bottom) return -1;
    return bandCount - 1 - static_cast<std::int32_t>(y - area.top) / pixelsPerBand;
}

void CKeyboard::draw(CDrawContext* context) {
    context->setDrawMode(kAliasing);
    const CRect& area = getViewSize();
    for (std::int32_t band = 0; band < bandCount; ++band) {
        const bool lit = sounding[static_cast<std::size_t>(band)];
        const CCoord top = area.top + pixelsPerBand * (bandCount - 1 - band);
        if (lit) {
            context->setFillColor(ColorOf(palette::note));
            const CCoord right = IsBlack(band) ? area.left + blackKeyWidth : area.right;
            context->drawRect(CRect(area.left, top, right, top + pixelsPerBand), kDrawFilled);
        }
        if (band % 12 != 0) continue;
        context->setFillColor(ColorOf(palette::blackKey));
        context->drawRect(CRect(area.right - 3, top + 1, area.right - 1, top + pixelsPerBand), kDrawFilled);
    }
    setDirty(false);
}
