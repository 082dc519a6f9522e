#pragma once
#include <bitset>
#include <cstdint>
#include <vector>

#include "parameters/parameters.h"
#include "vst2/records.h"
#include "vstgui/lib/cview.h"

// What lives on the keyboard beside the scrolling picture, which is part of the window's own picture: a light
// on each key that sounds, and a dot on each C.
//
// Threads: [ui].
class CKeyboard : public VSTGUI::CView {
public:
    explicit CKeyboard(const VSTGUI::CRect& size);

    void update(const std::vector<unsigned char>& levels);  // a byte a band, as in level_column.h

    // The band of the row at a place of the parent, on the keys or on the picture beside them; -1 above and
    // below.
    std::int32_t BandAt(VSTGUI::CCoord y) const;

    void draw(VSTGUI::CDrawContext* context) override;

    CLASS_METHODS_NOCOPY(CKeyboard, CView)

private:
    std::bitset<bandCount> sounding;
};
