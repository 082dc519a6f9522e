#pragma once
#include <vector>

#include "editor/buffered_control.h"

// The scrolling picture of what the detector hears: time from left to right with the newest column at the
// left edge, high notes at the top, 3 pixels a note. A tick moves the picture by one pixel and draws one
// column; there is no full redraw.
//
// Threads: [ui].
class CVolumeForm : public CBufferedControl {
public:
    explicit CVolumeForm(const VSTGUI::CRect& size);

    // Takes one new column: a byte a band, the lowest note first.
    void update(const std::vector<unsigned char>& levels);

    void createBuffers() override;  // also the back buffer; the front starts in the ground's colour

    bool HasPicture() const { return offscreenBitmap != nullptr; }

    CLASS_METHODS_NOCOPY(CVolumeForm, CBufferedControl)

private:
    void DrawColumn(const std::vector<unsigned char>& levels);

    std::vector<VSTGUI::CColor> palette;  // 256 entries: the gradient, and the notes' orange at its end

    // The picture is moved by copying it here and exchanging the two pairs.
    VSTGUI::SharedPointer<VSTGUI::COffscreenContext> backOffscreen;
    VSTGUI::SharedPointer<VSTGUI::CBitmap> backBitmap;
};
