#include "delivery/output_list.h"

#include <mutex>

OutputList::~OutputList() {
    FreeRetired();
    for (Entry* entry = first.load(); entry != nullptr;) {
        Entry* const gone = entry;
        entry = entry->next.load();
        delete gone;
    }
}

void OutputList::Append(TNoteOut* output) {
    const std::lock_guard<PriorityLock> held(changing);
    if (Quiet()) FreeRetired();
    auto* const added = new Entry{output};
    std::atomic<Entry*>* link = &first;
    while (Entry* const entry = link->load()) link = &entry->next;
    link->store(added);
}

void OutputList::Remove(const TNoteOut* output) {
    const std::lock_guard<PriorityLock> held(changing);
    for (std::atomic<Entry*>* link = &first; Entry* const entry = link->load(); link = &entry->next) {
        if (entry->output.load() != output) continue;
        entry->output.store(nullptr);
        link->store(entry->next.load());
        entry->retired = retired;
        retired = entry;
        break;
    }
    if (Quiet()) FreeRetired();
}

bool OutputList::Contains(const TNoteOut* output) const {
    bool found = false;
    ForEach([&](const TNoteOut& each) { found |= &each == output; });
    return found;
}

void OutputList::FreeRetired() {
    while (retired != nullptr) {
        Entry* const gone = retired;
        retired = gone->retired;
        delete gone;
    }
}
