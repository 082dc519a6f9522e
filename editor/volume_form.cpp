#include "editor/volume_form.h"

#include <utility>

#include "editor/level_column.h"
#include "editor/window_look.h"

using namespace VSTGUI;

CVolumeForm::CVolumeForm(const CRect& size) : CBufferedControl(size, nullptr, 0) {
    palette.reserve(soundingEntry + 1);
    for (int i = 0; i <= soundingEntry; ++i) {
        const PaletteColor entry = PaletteEntry(i, CurrentVariant() == Variant::dark);
        palette.emplace_back(entry.red, entry.green, entry.blue, std::uint8_t{255});
    }
    setMouseEnabled(false);
}

void CVolumeForm::createBuffers() {
    if (offscreen) return;
    CBufferedControl::createBuffers();
    backOffscreen = MakeContext();
    if (!offscreen || !backOffscreen) return;
    backBitmap = backOffscreen->getBitmap();

    DrawInto(*offscreen, [this] {
        offscreen->setFillColor(palette.front());
        offscreen->drawRect(CRect(0, 0, getWidth(), getHeight()), kDrawFilled);
    });
}

void CVolumeForm::update(const std::vector<unsigned char>& levels) {
    createBuffers();
    if (offscreen && backOffscreen) {
        DrawInto(*backOffscreen,
                 [this] { offscreenBitmap->draw(backOffscreen, CRect(1, 0, getWidth(), getHeight())); });
        std::swap(offscreen, backOffscreen);
        std::swap(offscreenBitmap, backBitmap);
        DrawColumn(levels);
    }
    setDirty();
}

// Pixels of one colour that follow each other are one rectangle: a quiet column is a single one.
void CVolumeForm::DrawColumn(const std::vector<unsigned char>& levels) {
    const auto column = ColumnOf(levels);
    DrawInto(*offscreen, [&] {
        for (std::size_t top = 0; top < column.size();) {
            std::size_t bottom = top + 1;
            while (bottom < column.size() && column[bottom] == column[top]) ++bottom;
            offscreen->setFillColor(palette[column[top]]);
            offscreen->drawRect(CRect(0, static_cast<CCoord>(top), 1, static_cast<CCoord>(bottom)),
                                kDrawFilled);
            top = bottom;
        }
    });
}
