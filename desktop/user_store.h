#pragma once
#include <cstddef>
#include <string>
#include <string_view>

// Settings that the program keeps for a user: texts by name, below "ORVA Labs" in the user's configuration
// folder ($XDG_CONFIG_HOME, else $HOME/.config). Each is a file of its own, readable by the user alone, and
// is replaced as a whole: a reader, in this process or another, sees the text from before or after a write.
//
// The name is that of one setting, not a path: names that are empty, begin with a dot, hold a slash, a
// backslash or a zero byte, or are longer than 200 bytes are no names.
//
// Threads: [any] but [audio]: both work on files or the registry. Errors: none are shown.

// Whether the text is stored. On failure the old text stays.
bool writeRegistryString(std::string_view subKey, std::string_view text);

// The text, or an empty one where there is none, where it cannot be read, or where it is longer than 255
// bytes, which is the most that is ever read. It ends at a zero byte.
std::string readRegistryString(std::string_view subKey);

// The same on this system, for legal names.
constexpr std::size_t longestStoredText = 255;  // bytes that are read
bool WriteSetting(std::string_view name, std::string_view text);
std::string ReadSetting(std::string_view name);
