#include "editor/file_drag.h"

#include "vst2/records.h"
#include "vstgui/lib/cdropsource.h"
#include "vstgui/lib/cview.h"
#include "vstgui/lib/dragging.h"

std::unique_ptr<FileDrag> FileDrag::Begin(VSTGUI::CView& from, const std::string& path) {
    auto source = VSTGUI::CDropSource::create(path.c_str(), static_cast<std::uint32_t>(path.size() + 1),
                                              VSTGUI::IDataPackage::kFilePath);
    from.doDrag(VSTGUI::DragDescription(std::move(source)));
    return nullptr;
}
