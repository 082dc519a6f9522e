#include "delivery/output_list.h"

#include <algorithm>
#include <stdexcept>

#include "base/mutex.h"

// Behind the last one, so that the order of attachment stays; a gap before it is left.
void OutputList::Append(TNoteOut* output) {
    const Locked held(changing);
    std::size_t end = capacity;
    while (end > 0 && slots[end - 1].load() == nullptr) --end;
    if (end == capacity) throw std::length_error("too many outputs");
    slots[end].store(output);
}

void OutputList::Remove(const TNoteOut* output) {
    const Locked held(changing);
    const auto found = std::find(slots.begin(), slots.end(), output);
    if (found != slots.end()) found->store(nullptr);
}

bool OutputList::Contains(const TNoteOut* output) const {
    return std::find(slots.begin(), slots.end(), output) != slots.end();
}
