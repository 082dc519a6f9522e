#pragma once
#include <string>

#include "vst2/records.h"
#include "vstgui/lib/cviewcontainer.h"

// What a mouse that rests in the window sees: a tint on the control under it, and after half a second a plate
// beside it that says what the control does. The plate is drawn within the window, since not every system has
// one to offer.
//
// Threads: [ui].
class Hover {
public:
    static constexpr int restingSteps = 10;  // of 50 ms

    explicit Hover(VSTGUI::CViewContainer& itsWindow);  // its two views go with the window

    // The mouse stands there, over a control of this area of the window, or over none.
    void PointAt(const VSTGUI::CPoint& where, const VSTGUI::CRect* control);
    void Leave();
    void Disturb();  // something was pressed or changed: no plate until the mouse moves again
    bool Step();     // one of idle time; true when the plate is due
    void Say(const std::string& text);

    // All other views stand below it.
    VSTGUI::CView* LowestView() const { return tint; }

private:
    VSTGUI::CViewContainer& window;
    VSTGUI::CView* tint;     // the window's
    class PlateView* plate;  // the window's
    VSTGUI::CPoint pointer;
    bool isOverControl = false;
    int steps = 0;  // for which the mouse has rested
};
