#pragma once
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/cgraphicstransform.h"
#include "vstgui/lib/coffscreencontext.h"
#include "vstgui/lib/controls/ccontrol.h"

// A control that draws through a buffer of its own size: it repaints the buffer when something changed, and
// the window takes its pixels from there.
//
// Threads: [ui], all of it.
class CBufferedControl : public VSTGUI::CControl {
public:
    CBufferedControl(const VSTGUI::CRect& size, VSTGUI::IControlListener* controlListener,
                     std::int32_t controlTag)
        : CControl(size, controlListener, controlTag) {}

    void draw(VSTGUI::CDrawContext* context) override;  // copies the buffer; without one, nothing
    bool attached(VSTGUI::CView* parent) override;      // the first time, makes the buffers
    void setDirty(bool dirty = true) override;

    CLASS_METHODS_NOCOPY(CBufferedControl, CControl)

    // Makes context and bitmap of the control's size, if they do not yet exist. Some systems have none to
    // give before the window's first painting, so this is asked once more wherever they are needed.
    virtual void createBuffers();

protected:
    // Made together, kept until the control goes; `offscreenBitmap` is what `offscreen` draws into.
    VSTGUI::SharedPointer<VSTGUI::COffscreenContext> offscreen;
    VSTGUI::SharedPointer<VSTGUI::CBitmap> offscreenBitmap;

    // A context of the control's size, as fine as the pictures are at the window's zoom.
    VSTGUI::SharedPointer<VSTGUI::COffscreenContext> MakeContext();

    // Calls draw() with the context ready for what is given in the layout's pixels.
    template <typename Draw>
    void DrawInto(VSTGUI::COffscreenContext& context, Draw draw) const {
        context.beginDraw();
        context.setDrawMode(VSTGUI::kAliasing);
        {
            const VSTGUI::CDrawContext::Transform scaled(
                context, VSTGUI::CGraphicsTransform().scale(bufferScale, bufferScale));
            draw();
        }
        context.endDraw();
    }

    // Something changed since the buffer was painted. The toolkit's own mark is gone by the time draw runs.
    bool bufferIsStale = true;

private:
    double bufferScale = 1;  // pixels of the buffers for each of the layout
};
