#include "editor/orva_frame.h"

#include "editor/gui_editor.h"
#include "vst2/records.h"
#include "vstgui/lib/cbitmap.h"
#include "vstgui/lib/controls/cslider.h"

using namespace VSTGUI;

namespace {

constexpr std::int32_t pageSizeId = 113;  // the main page's picture gives the size of all pages
constexpr CCoord stripHeight = 38;        // pixels of the window above the pages

CRect PageRect(guiEditor* editor) {
    return controls::WholeOf(editor->getBitmap(pageSizeId), {0, stripHeight});
}

}  // namespace

CORVAFrame::CORVAFrame(guiEditor* itsEditor, std::int32_t backgroundId)
    : CViewContainer(PageRect(itsEditor)), editor(itsEditor) {
    setBackground(itsEditor->getBitmap(backgroundId));
}

CBitmap* CORVAFrame::getBitmap(std::int32_t id) const {
    return editor->getBitmap(id);
}

std::int32_t CORVAFrame::ParameterAt(const CPoint& where) const {
    CPoint inWindow = where;
    inWindow.offset(getViewSize().left, getViewSize().top);
    const auto* const slider =
        dynamic_cast<CSliderBase*>(getViewAt(inWindow, GetViewOptions().mouseEnabled()));
    return slider != nullptr ? slider->getTag() : -1;
}

CRect controls::HalfOf(const CBitmap* bitmap, CPoint position) {
    return {position, CPoint(bitmap->getWidth(), bitmap->getHeight() / 2)};
}

CRect controls::WholeOf(const CBitmap* bitmap, CPoint position) {
    return {position, bitmap->getSize()};
}
