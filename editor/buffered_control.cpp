#include "editor/buffered_control.h"

#include "editor/pictures.h"
#include "vst2/records.h"
#include "vstgui/lib/cframe.h"
#include "vstgui/lib/platform/iplatformbitmap.h"

using namespace VSTGUI;

// The toolkit's own contexts of another scale are not of that scale on every system.
SharedPointer<COffscreenContext> CBufferedControl::MakeContext() {
    bufferScale = getFrame() != nullptr ? PictureScale(getFrame()->getZoom()) : 1;
    auto context = COffscreenContext::create(CPoint(getWidth(), getHeight()) * bufferScale);
    if (context) context->getBitmap()->getPlatformBitmap()->setScaleFactor(bufferScale);
    return context;
}

void CBufferedControl::createBuffers() {
    if (offscreen) return;
    offscreen = MakeContext();
    if (offscreen) offscreenBitmap = offscreen->getBitmap();
}

bool CBufferedControl::attached(CView* parent) {
    const bool result = CControl::attached(parent);
    createBuffers();
    return result;
}

void CBufferedControl::setDirty(bool dirty) {
    if (dirty) bufferIsStale = true;
    CControl::setDirty(dirty);
}

void CBufferedControl::draw(CDrawContext* context) {
    createBuffers();
    if (offscreenBitmap) offscreenBitmap->draw(context, getViewSize());
    setDirty(false);
}
