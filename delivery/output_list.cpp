#include "delivery/output_list.h"

OutputList::~OutputList() {
    FreeRetired();
    for (Entry* entry = first.load(); entry != nullptr;) {
        Entry* const gone = entry;
        entry = entry->next.load();
        delete gone;
    }
}

void OutputList::Append(TNoteOut* output) {
    if (Quiet()) FreeRetired();
    auto* const added = new Entry{output};
    std::atomic<Entry*>* link = &first;
    while (Entry* const entry = link->load()) link = &entry->next;
    link->store(added);
}

void OutputList::Remove(const TNoteOut* output) {
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
    for (const Entry* entry = first.load(); entry != nullptr; entry = entry->next.load())
        if (entry->output.load() == output) return true;
    return false;
}

void OutputList::FreeRetired() {
    while (retired != nullptr) {
        Entry* const gone = retired;
        retired = gone->retired;
        delete gone;
    }
}
