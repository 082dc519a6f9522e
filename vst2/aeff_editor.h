#pragma once
#include "vst2/records.h"

// What a host's editor calls reach. All of it [ui], on whichever thread the host keeps its windows.
class AEffEditor {
public:
    virtual ~AEffEditor() = default;

    // The editor's size; false when it has none yet. The record stays the editor's. May come before open.
    virtual bool getRect(ERect** rect) = 0;
    // Opens inside the host's window `parent`; false when it cannot.
    virtual bool open(void* parent) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    virtual void idle() = 0;
    virtual bool onKeyDown(const VstKeyCode&) { return false; }  // true: the key was used
    virtual bool onKeyUp(const VstKeyCode&) { return false; }
    virtual bool setKnobMode(std::int32_t) { return false; }
};
