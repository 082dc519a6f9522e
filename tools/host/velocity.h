#pragma once
#include "tools/host/take.h"

// Gives each note a velocity by the highest level that it reached, as the window's recorder does: the loudest
// of the take keeps the velocity that is set, and others have less by the fourth root of their power. A take
// without levels stays as it is.
void FollowLevels(Take& take);
