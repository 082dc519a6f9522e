#pragma once
#include <cstdint>

#include "vst2/records.h"
#include "vstgui/lib/cview.h"

// What goes in and what goes out, as one look at it: the input's level with a mark where notes begin to be
// heard, a lamp for samples that are too loud, and one for MIDI that leaves the plug-in. At rest it is empty.
//
// A note's level is that of its band and not of the samples, so the mark is a stretch: a sound whose peaks
// stay left of it is never heard, a single note whose peaks reach its right end always; in between, the more
// overtones carry the sound, the sooner it is heard.
//
// Threads: [ui].
class CActivityMeter : public VSTGUI::CView {
public:
    explicit CActivityMeter(const VSTGUI::CRect& size);

    // A step of 50 ms: the highest sample in it, where full scale is 1; how little a note may have to be
    // heard, in dB; and whether MIDI went out.
    void Update(float peak, float floorDb, bool sent);

    enum class Part { none, level, clip, midi };
    Part PartAt(const VSTGUI::CPoint& where) const;  // in the parent's coordinates

    void draw(VSTGUI::CDrawContext* context) override;

    CLASS_METHODS_NOCOPY(CActivityMeter, CView)

private:
    VSTGUI::CRect Lamp(Part part) const;
    VSTGUI::CCoord PlaceOf(float dB) const;

    float level;          // dB, falling
    float floor = 0;      // dB
    int stepsOfClip = 0;  // for which a lamp stays lit
    int stepsOfMidi = 0;
};
