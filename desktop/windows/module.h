#pragma once
#include <windows.h>

#include <functional>

// The module that this code is part of. [any]
HMODULE ThisModule();

// Does a piece of work on a thread of its own; the module stays loaded until that has ended. False where
// there is no such thread. [any]
bool RunBeside(std::function<void()> work);
