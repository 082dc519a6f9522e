#include "harmony/name_ring.h"

#include <bit>

void NameRing::Set(std::size_t index, const TChordName& name) {
    const auto words = std::bit_cast<Words>(name);
    for (std::size_t word = 0; word < words.size(); ++word) slots[index][word] = words[word];
}

TChordName NameRing::Get(std::size_t index) const {
    Words words;
    for (std::size_t word = 0; word < words.size(); ++word) words[word] = slots[index][word];
    return std::bit_cast<TChordName>(words);
}

void NameRing::Resize(std::size_t newSize) {
    for (std::size_t index = newSize; index < used; ++index) Set(index, TChordName());
    used = newSize;
}
