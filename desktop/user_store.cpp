#include "desktop/user_store.h"

#include <exception>

namespace {

bool IsName(std::string_view subKey) {
    constexpr std::size_t longest = 200;  // bytes; what a system adds stays below the 255 of a file's name
    return !subKey.empty() && subKey.size() <= longest && subKey.front() != '.' &&
           subKey.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

}  // namespace

bool writeRegistryString(std::string_view subKey, std::string_view text) try {
    return IsName(subKey) && WriteSetting(subKey, text);
} catch (const std::exception&) {  // no memory
    return false;
}

std::string readRegistryString(std::string_view subKey) try {
    if (!IsName(subKey)) return {};
    const std::string text = ReadSetting(subKey);
    return text.size() <= longestStoredText ? text.substr(0, text.find('\0')) : std::string();
} catch (const std::exception&) {
    return {};
}
