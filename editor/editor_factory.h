#pragma once
#include <memory>

#include "plugin/editor_interface.h"

// The editor of a plug-in object, for the module to hand to it; nobody needs to see more of the editor than
// this. Starts no toolkit: that waits for the first open.
std::unique_ptr<IPluginEditor> MakeGuiEditor(CORVAguivst& effect);
