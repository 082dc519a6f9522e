#pragma once
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "editor/file_drag.h"

// The last take, dragged out of the window as a MIDI file. Each drag has a file of its own, since a host may
// read what was dropped much later; all of them last until the window closes.
//
// Threads: [ui].
class TakeDrag {
public:
    TakeDrag() = default;
    ~TakeDrag() { End(); }
    TakeDrag(const TakeDrag&) = delete;
    TakeDrag& operator=(const TakeDrag&) = delete;

    // `write` puts the take into the file of that name. False when it could not, or there is no place for it.
    bool Begin(VSTGUI::CView& from, const std::function<bool(const std::string& path)>& write);
    void Step() {  // at each idle call
        if (drag && !drag->GoesOn()) drag.reset();
    }
    void End();  // and with it the files

private:
    std::filesystem::path folder;  // empty until the first drag
    int number = 0;                // of the file
    std::unique_ptr<FileDrag> drag;
};
