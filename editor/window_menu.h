#pragma once
#include <string>

#include "plugin/hearing.h"
#include "vst2/records.h"
#include "vstgui/lib/controls/coptionmenu.h"

class guiEditor;

// The menu that a right click on an empty part of the window opens, with what is no parameter: how the
// instance hears, unless the host has controls for that, the window's size and look, and settings to begin
// with.
//
// Threads: [ui]. The editor must outlive the menu.
VSTGUI::SharedPointer<VSTGUI::COptionMenu> MakeWindowMenu(guiEditor& editor);

// One line for the window's lower edge, empty for the hearing that a plug-in begins with.
std::string HearingText(const Hearing& hearing);
