#pragma once
#include <memory>
#include <string>

namespace VSTGUI {
class CView;
}

// A file on its way out of the window, while the mouse's button is held: to whatever takes files where it is
// let go. The file must last until that has read it, which may be long after.
//
// Threads: [ui].
class FileDrag {
public:
    // With the button down since before, in `from`. None where the system itself sees to all that follows, or
    // nothing can be dragged.
    static std::unique_ptr<FileDrag> Begin(VSTGUI::CView& from, const std::string& path);
    FileDrag() = default;
    virtual ~FileDrag() = default;  // nothing is dropped then
    FileDrag(const FileDrag&) = delete;
    FileDrag& operator=(const FileDrag&) = delete;

    virtual bool GoesOn() = 0;  // one step, at each idle call; false once it has ended
};
