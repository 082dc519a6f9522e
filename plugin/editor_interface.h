#pragma once
#include <atomic>
#include <cstdint>
#include <memory>

#include "vst2/aeff_editor.h"

class CORVAguivst;

// What the plug-in object needs of an editor beyond the host's calls.
class IPluginEditor : public AEffEditor {
public:
    // [any], the audio thread included: a parameter has a new value. Index codeChordText stands for
    // no parameter: a new chord text is ready. Must neither wait nor touch a view on the calling thread.
    virtual void parameterChanged(std::int32_t index, float value) = 0;
    // [ui] While closed: the scale to open at, instead of the user's own; false while open.
    virtual bool setScale(double /*scale*/) { return false; }
    // [ui] Dark windows, or light ones, instead of the user's own.
    virtual bool setDark(bool /*dark*/) { return false; }
};

// Makes the editor of a plug-in object under construction, which it may keep but not yet call. Null, or an
// exception: the editor cannot be had.
using EditorFactory = std::unique_ptr<IPluginEditor> (*)(CORVAguivst& effect);

// Process-wide and never cleared: an instance has failed to build its editor, and every later one is refused.
extern std::atomic<bool> editorCreationFailed;
