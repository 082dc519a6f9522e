#include "editor/editor_factory.h"

#include "editor/gui_editor.h"

std::unique_ptr<IPluginEditor> MakeGuiEditor(CORVAguivst& effect) {
    return std::make_unique<guiEditor>(&effect);
}
