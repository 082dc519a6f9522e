#include "editor/activity_meter.h"

#include <algorithm>
#include <cmath>

#include "editor/look.h"
#include "plugin/input_meter.h"
#include "vstgui/lib/cdrawcontext.h"

using namespace VSTGUI;

namespace {

constexpr float lowest = -60,
                highest = 1;  // dB; full scale of the detector's samples is 0.77 above the host's
constexpr float fall = 1;     // dB a step: 20 a second
constexpr int clipSteps = 40, midiSteps = 3;

// dB from the level of a note's band to the sample peak of a lone sine that just reaches it: measured with
// the detector at -20 and -35 dB, from A2 to A6. Sounds rich in overtones take 0.5 to 3.7 dB.
constexpr float sineAbove = 7;

constexpr CCoord lampWidth = 9, gap = 3;

}  // namespace

CActivityMeter::CActivityMeter(const CRect& size) : CView(size), level(lowest) {}

void CActivityMeter::Update(float peak, float floorDb, bool sent) {
    const float heard = std::clamp(20 * std::log10(std::max(peak, 1e-6F)), lowest, highest);
    const float nowLevel = std::max(heard, level - fall);
    const int nowClip = peak >= InputMeter::fullScale ? clipSteps : std::max(stepsOfClip - 1, 0);
    const int nowMidi = sent ? midiSteps : std::max(stepsOfMidi - 1, 0);
    const bool changes = nowLevel != level || floorDb != floor || (nowClip > 0) != (stepsOfClip > 0) ||
                         (nowMidi > 0) != (stepsOfMidi > 0);
    level = std::max(nowLevel, lowest), floor = floorDb, stepsOfClip = nowClip, stepsOfMidi = nowMidi;
    if (changes) invalid();
}

CRect CActivityMeter::Lamp(Part part) const {
    CRect lamp = getViewSize();
    if (part == Part::clip) lamp.right -= lampWidth + gap;
    lamp.left = lamp.right - lampWidth;
    return lamp;
}

CActivityMeter::Part CActivityMeter::PartAt(const CPoint& where) const {
    if (!getViewSize().pointInside(where)) return Part::none;
    if (where.x >= Lamp(Part::midi).left - gap / 2) return Part::midi;
    return where.x >= Lamp(Part::clip).left - gap / 2 ? Part::clip : Part::level;
}

CCoord CActivityMeter::PlaceOf(float dB) const {
    const CCoord left = getViewSize().left, right = Lamp(Part::clip).left - gap;
    const float share = (std::clamp(dB, lowest, highest) - lowest) / (highest - lowest);
    return left + (right - left) * static_cast<CCoord>(share);
}

void CActivityMeter::draw(CDrawContext* context) {
    context->setDrawMode(kAntiAliasing);
    const auto fill = [context](const CRect& area, const CColor& color) {
        context->setFillColor(color);
        context->drawRect(area, kDrawFilled);
    };
    const CRect& all = getViewSize();
    CRect groove(all.left, all.top + 1, PlaceOf(highest), all.bottom - 1);
    fill(groove, ColorOf(palette::grooveLow));
    fill(CRect(groove.left, groove.top, PlaceOf(level), groove.bottom), ColorOf(palette::grooveHigh));
    const CColor mark = ColorOf(palette::text);
    const CCoord from = PlaceOf(floor), to = PlaceOf(floor + sineAbove);
    fill(CRect(from, all.bottom - 1, to, all.bottom), mark);
    fill(CRect(from, all.top, from + 1, all.bottom), mark);
    fill(CRect(to - 1, all.top, to, all.bottom), mark);

    const auto lamp = [&](Part part, bool lit, const Shade& color) {
        CRect area = Lamp(part);
        area.inset(0, 0.5);
        fill(area, ColorOf(lit ? color : palette::grooveLow));
        context->setFrameColor(ColorOf(palette::grooveFrame));
        context->setLineWidth(0.5);
        context->drawRect(area, kDrawStroked);
    };
    lamp(Part::clip, stepsOfClip > 0, palette::recordOff);
    lamp(Part::midi, stepsOfMidi > 0, palette::note);
    setDirty(false);
}
