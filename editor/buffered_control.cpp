#include "editor/buffered_control.h"

using namespace VSTGUI;

SharedPointer<COffscreenContext> CBufferedControl::MakeContext(const CPoint& size) {
    return COffscreenContext::create(size);
}

void CBufferedControl::createBuffers() {
    if (offscreen) return;
    offscreen = MakeContext({getWidth(), getHeight()});
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
