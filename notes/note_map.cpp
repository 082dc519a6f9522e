#include "notes/note_map.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <iterator>

namespace {

// CompareBoundary and CompareByBegin as orders, without a call: the maps live by these.
struct PointOrder {
    static std::uint64_t Key(const TNoteBoundary* point) {
        return std::uint64_t{point->time} << 1 | point->kind;
    }
    bool operator()(const TNoteBoundary* a, const TNoteBoundary* b) const {
        const std::uint64_t keyA = Key(a), keyB = Key(b);
        return keyA != keyB ? keyA < keyB : std::less<>()(a, b);
    }
};

struct BeginOrder {
    bool operator()(const TNote* a, const TNote* b) const {
        const std::uint32_t beginA = a->startPoint.time, beginB = b->startPoint.time;
        return beginA != beginB ? beginA < beginB : std::less<>()(a, b);
    }
};

using AddressOrder = std::less<>;

// Index of the first element that does not stand before `item`. The ends are compared first: a score that is
// filled in order of time ends there.
template <typename Vector, typename Item, typename Order>
std::size_t Place(const Vector& sorted, const Item& item, Order before) {
    if (sorted.empty() || before(sorted.back(), item)) return sorted.size();
    if (!before(sorted.front(), item)) return 0;
    return static_cast<std::size_t>(std::lower_bound(sorted.begin(), sorted.end(), item, before) -
                                    sorted.begin());
}

// Files `item` unless it is there already; the result is its index.
template <typename Vector, typename Item, typename Order>
std::size_t InsertSorted(Vector& sorted, Item item, Order before) {
    const std::size_t place = Place(sorted, item, before);
    if (place == sorted.size() || sorted[place] != item)
        sorted.insert(sorted.begin() + static_cast<std::ptrdiff_t>(place), item);
    return place;
}

template <typename Vector, typename Item, typename Order>
void EraseSorted(Vector& sorted, const Item& item, Order before) {
    const std::size_t place = Place(sorted, item, before);
    if (place < sorted.size() && sorted[place] == item)
        sorted.erase(sorted.begin() + static_cast<std::ptrdiff_t>(place));
}

// Brings the element at `from`, whose key has changed, to its place; the result is that place. Its
// neighbours are asked first, so an element that stays where it is costs two comparisons.
template <typename Vector, typename Order>
std::size_t Resort(Vector& sorted, std::size_t from, Order before) {
    const auto begin = sorted.begin();
    const auto moved = begin + static_cast<std::ptrdiff_t>(from);
    if (std::next(moved) != sorted.end() && before(*std::next(moved), *moved)) {
        const auto place = std::lower_bound(std::next(moved), sorted.end(), *moved, before);
        std::rotate(moved, std::next(moved), place);
        return static_cast<std::size_t>(place - begin) - 1;
    }
    if (from > 0 && before(*moved, *std::prev(moved))) {
        const auto place = std::lower_bound(begin, moved, *moved, before);
        std::rotate(place, moved, std::next(moved));
        return static_cast<std::size_t>(place - begin);
    }
    return from;
}

}  // namespace

void TNoteMap::Insert(TNote* note) {
    try {
        const std::size_t start = InsertSorted(points, &note->startPoint, PointOrder());
        const std::size_t end = InsertSorted(points, &note->endPoint, PointOrder());
        const std::size_t index = InsertSorted(notes, note, BeginOrder());
        Renumber(index, notes.size());
        TakeOverPrevious(start, 1);
        TakeOverPrevious(end, 0);  // before the note enters the lists, so that its end lacks it
        for (std::size_t point = start; point < end; ++point)
            InsertSorted(Sounding(point), note, AddressOrder());
    } catch (...) {
        TakeBack(note);
        throw;
    }
}

void TNoteMap::Remove(TNote* note) {
    const std::size_t start = IndexOf(&note->startPoint);
    const std::size_t end = IndexOf(&note->endPoint);
    for (std::size_t point = start + 1; point < end; ++point)
        EraseSorted(Sounding(point), note, AddressOrder());
    points.erase(points.begin() + static_cast<std::ptrdiff_t>(end));
    points.erase(points.begin() + static_cast<std::ptrdiff_t>(start));
    const std::size_t index = static_cast<std::size_t>(note->listIndex[mapIndex]);
    assert(index < notes.size() && notes[index] == note);
    notes.erase(notes.begin() + static_cast<std::ptrdiff_t>(index));
    Renumber(index, notes.size());
}

// After an insert that ran out of memory: whatever part of it was done is undone, without allocating.
void TNoteMap::TakeBack(TNote* note) {
    for (TNoteBoundary* point : points) EraseSorted(point->sounding[mapIndex], note, AddressOrder());
    std::erase(points, &note->startPoint);
    std::erase(points, &note->endPoint);
    std::erase(notes, note);
    Renumber(0, notes.size());
}

// Brings a boundary to its new time and place, with the list of what sounds before it; the result is its old
// and its new place. At the same place nothing that follows below has an effect.
std::pair<std::size_t, std::size_t> TNoteMap::Move(TNoteBoundary* boundary, std::uint32_t time,
                                                   std::size_t more) {
    const std::size_t from = IndexOf(boundary);
    boundary->time = time;
    const std::size_t to = Resort(points, from, PointOrder());
    if (boundary == &boundary->note->startPoint) MoveNote(boundary->note);
    if (to != from) TakeOverPrevious(to, more);
    return {from, to};
}

void TNoteMap::MoveStartLater(TNoteBoundary* boundary, std::uint32_t time) {
    const auto [from, to] =
        Move(boundary, time, 0);  // its list is taken before the note leaves those before it
    for (std::size_t point = from; point < to; ++point)
        EraseSorted(Sounding(point), boundary->note, AddressOrder());
}

void TNoteMap::MoveStartEarlier(TNoteBoundary* boundary, std::uint32_t time) {
    const auto [from, to] = Move(boundary, time, 1);
    for (std::size_t point = to; point <= from; ++point)
        InsertSorted(Sounding(point), boundary->note, AddressOrder());
}

void TNoteMap::MoveEndEarlier(TNoteBoundary* boundary, std::uint32_t time) {
    const auto [from, to] = Move(boundary, time, 0);
    for (std::size_t point = to; point <= from; ++point)
        EraseSorted(Sounding(point), boundary->note, AddressOrder());
}

void TNoteMap::MoveEndLater(TNoteBoundary* boundary, std::uint32_t time) {
    const auto [from, to] = Move(boundary, time, 0);
    for (std::size_t point = from; point < to; ++point)
        InsertSorted(Sounding(point), boundary->note, AddressOrder());
}

void TNoteMap::NotesAt(TNoteList& result, std::uint32_t time) const {
    result.clear();
    AppendNotesAt(result, time);
}

void TNoteMap::AppendNotesAt(TNoteList& result, std::uint32_t time) const {
    const TNoteBoundary* const point = PointAt(time);
    if (point == nullptr) return;
    const TNoteList& sounding = point->sounding[mapIndex];
    result.insert(result.end(), sounding.begin(), sounding.end());
}

void TNoteMap::AppendNotesInRange(TNoteList& result, std::uint32_t from, std::uint32_t to) const {
    if (from > to) std::swap(from, to);
    AppendNotesAt(result, from);
    const auto first = notes.begin() + (LastNoteBefore(from) + 1);
    result.insert(result.end(), first, notes.begin() + (LastNoteBefore(to) + 1));
}

TNoteBoundary* TNoteMap::PointAt(std::uint32_t time) const {
    if (points.empty() || points.front()->time > time) return nullptr;
    if (points.back()->time <= time) return points.back();
    const auto after =
        std::upper_bound(points.begin(), points.end(), time,
                         [](std::uint32_t at, const TNoteBoundary* point) { return at < point->time; });
    return *std::prev(after);
}

std::int32_t TNoteMap::LastNoteBefore(std::uint32_t time) const {
    const auto after =
        std::upper_bound(notes.begin(), notes.end(), time,
                         [](std::uint32_t at, const TNote* note) { return at < note->startPoint.time; });
    return static_cast<std::int32_t>(after - notes.begin()) - 1;
}

std::uint32_t TNoteMap::LastTime() const {
    return points.empty() ? 0 : points.back()->time;
}

void TNoteMap::Clear() {
    notes.clear();
    points.clear();
}

// The list of a point that is new at its place starts as its predecessor's, with capacity for `more` notes.
void TNoteMap::TakeOverPrevious(std::size_t point, std::size_t more) {
    TNoteList& list = Sounding(point);
    list.clear();
    if (point == 0) return;
    const TNoteList& previous = Sounding(point - 1);
    list.reserve(previous.size() + more);
    list.assign(previous.begin(), previous.end());
}

std::size_t TNoteMap::IndexOf(TNoteBoundary* boundary) const {
    const std::size_t place = Place(points, boundary, PointOrder());
    assert(place < points.size() && points[place] == boundary);
    return place;
}

void TNoteMap::MoveNote(TNote* note) {
    const std::size_t from = static_cast<std::size_t>(note->listIndex[mapIndex]);
    const std::size_t to = Resort(notes, from, BeginOrder());
    Renumber(std::min(from, to), std::max(from, to) + 1);
}

void TNoteMap::Renumber(std::size_t from, std::size_t end) {
    for (std::size_t index = from; index < end; ++index)
        notes[index]->listIndex[mapIndex] = static_cast<std::int32_t>(index);
}
