#pragma once
#include "editor/linux/run_loop.h"

struct xcb_connection_t;

// What the toolkit keeps for X11 while a session of it lasts (editor/toolkit.h): its connection to the
// display, and the loop that serves it. [ui, under ToolkitLock()]
xcb_connection_t* DisplayConnection();
EditorRunLoop& DisplayLoop();
