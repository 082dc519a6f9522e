#pragma once
#include <cstdint>

#include "vst2/records.h"
#include "vstgui/lib/controls/icontrollistener.h"
#include "vstgui/lib/cviewcontainer.h"

class guiEditor;

// A page of the window: a picture with controls on it, whose listener it is. All pages live as long as the
// window; one that is not shown is not attached to it, but still hears of every parameter.
//
// Threads: [ui].
class CORVAFrame : public VSTGUI::CViewContainer, public VSTGUI::IControlListener {
public:
    // Of the size of its picture, `backgroundId`, below the window's strip.
    CORVAFrame(guiEditor* itsEditor, std::int32_t backgroundId);

    // A parameter has a new value, from the host or another page; the controls follow and notify nobody.
    virtual void setParameter(std::int32_t /*index*/, float /*value*/) {}
    void valueChanged(VSTGUI::CControl* control) override = 0;
    // The parameter whose value a slider or a bar shows at a place of the page; -1 for none.
    virtual std::int32_t ParameterAt(const VSTGUI::CPoint& where) const;

    CLASS_METHODS_NOCOPY(CORVAFrame, CViewContainer)

protected:
    VSTGUI::CBitmap* getBitmap(std::int32_t id) const;

    guiEditor* editor;  // lives longer than the page
};

// Controls made of pictures, as all pages need them. Positions are the upper left corner within the page. The
// bitmap of a button holds its two states one above the other.
namespace controls {

VSTGUI::CRect HalfOf(const VSTGUI::CBitmap* bitmap, VSTGUI::CPoint position);
VSTGUI::CRect WholeOf(const VSTGUI::CBitmap* bitmap, VSTGUI::CPoint position);

}  // namespace controls
