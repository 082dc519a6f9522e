#include "plugin/note_dates.h"

#include <iterator>
#include <string>

#include "desktop/user_store.h"

namespace {

constexpr char datesKey[] = "Note Dates";
constexpr const char* names[] = {"Auto", "When they began", "Never before the block"};

}  // namespace

const char* NameOf(NoteDates dates) {
    return names[static_cast<std::size_t>(dates)];
}

NoteDates ReadPreferredNoteDates() {
    const std::string stored = readRegistryString(datesKey);
    for (std::size_t i = 0; i < std::size(names); ++i)
        if (stored == names[i]) return static_cast<NoteDates>(i);
    return NoteDates::automatic;
}

bool StorePreferredNoteDates(NoteDates wanted) {
    return writeRegistryString(datesKey, NameOf(wanted));
}
