#pragma once

// Gives back what UseOwnFonts (editor/fonts.h) had DirectWrite take, before the toolkit's end. [ui, under
// ToolkitLock()]
void ForgetOwnFonts();
