#pragma once
#include <string>
#include <string_view>

// A text from outside, such as a file's name, fit for one line on a terminal: control characters (C0, delete
// and C1) and bytes that are no UTF-8 become \xNN, a backslash stays. Names on output never steer the
// terminal.
std::string Printable(std::string_view text);

bool IsUtf8(std::string_view text);
