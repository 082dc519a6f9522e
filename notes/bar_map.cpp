#include "notes/bar_map.h"

#include <iterator>
#include <limits>

#include "notes/notes.h"

namespace {

constexpr std::uint64_t lastTick = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t wholeNote = std::uint64_t{22050} * 240;  // ticks, at one quarter note a minute

// Where new bars stand in a gap that begins at `first`: every `spacing` ticks, `count` of them with the
// first one, which is there already. Bars closer than closestBars are left out, all but the very first new
// one, since the merging that follows would remove them again: at a spacing of one tick they are millions.
void FillGap(TBars& bars, TBars::iterator first, std::uint64_t gap, std::uint64_t spacing,
             std::uint32_t beats) {
    if (spacing == 0) return;
    const std::uint64_t whole = gap / spacing;
    const std::uint64_t count = gap % spacing < closestBars && whole > 0 ? whole - 1 : whole;
    const std::uint64_t kept = (closestBars + spacing - 1) / spacing;  // every one at normal spacings
    const auto next = std::next(first);
    for (std::uint64_t bar = 1; bar < count; bar += kept)
        bars.emplace_hint(next, static_cast<std::uint32_t>(first->first + bar * spacing), TBar{0, beats});
}

}  // namespace

std::uint64_t BarSpacing(std::uint32_t numerator, std::uint32_t shift, std::uint32_t bpm) {
    const std::uint64_t divisor = shift < 32 ? std::uint64_t{bpm} << shift : 0;
    return divisor > 0 ? numerator * wholeNote / divisor : 0;
}

void TNotes::FillBars(std::uint32_t end, std::uint32_t spacing, std::uint32_t beats) {
    bars.clear();
    if (spacing == 0) return;
    const std::uint64_t last = end / spacing + std::uint64_t{1};
    for (std::uint64_t bar = 0; bar <= last && bar * spacing <= lastTick; ++bar)
        bars.emplace_hint(bars.end(), static_cast<std::uint32_t>(bar * spacing),
                          TBar{static_cast<std::uint32_t>(bar), beats});
}

void TNotes::AddBar(std::uint32_t time, std::uint32_t beats) {
    const auto [bar, isNew] = bars.try_emplace(time, TBar{1, beats});
    if (!isNew) return;
    if (bar != bars.begin())
        bar->second.barIndex = std::prev(bar)->second.barIndex + 1;
    else if (bars.size() > 1)
        bar->second.barIndex = std::next(bar)->second.barIndex;
    std::uint32_t index = bar->second.barIndex;
    for (auto later = std::next(bar); later != bars.end(); ++later) later->second.barIndex = ++index;
}

void TNotes::RemoveBar(std::uint32_t time) {
    const auto bar = bars.find(time);
    if (bar == bars.end()) return;
    for (auto later = bars.erase(bar); later != bars.end(); ++later) --later->second.barIndex;
}

void TNotes::ReplaceBar(TBars::value_type old, TBars::value_type replacement) {
    if (old.first != replacement.first) {
        RemoveBar(old.first);
        AddBar(replacement.first, replacement.second.beatsPerBar);
    } else if (const auto bar = bars.find(old.first); bar != bars.end()) {
        bar->second.beatsPerBar = replacement.second.beatsPerBar;
    }
}

void TNotes::MoveBar(std::uint32_t time, std::uint32_t newTime) {
    const auto bar = bars.find(time);
    if (bar != bars.end()) ReplaceBar(*bar, {newTime, bar->second});
}

void TNotes::MergeCloseBars() {
    for (auto bar = bars.begin(); bar != bars.end();) {
        const auto next = std::next(bar);
        if (next != bars.end() && next->first - bar->first < closestBars)
            RemoveBar(next->first);
        else
            bar = next;
    }
}

// What AddBar and RemoveBar would give one by one, in a single pass: behind the first bar that was added,
// numbers run on from their predecessor's; before it, they go down by the bars that were removed.
void TNotes::NormalizeBars(std::uint32_t numerator, std::uint32_t shift, std::uint32_t bpm,
                           std::uint32_t lastTime) {
    if (bars.empty()) return;
    AddBar(0, numerator);
    if (lastTime >= bars.rbegin()->first + std::uint64_t{closestBars}) AddBar(lastTime, numerator);

    const std::uint64_t spacing = BarSpacing(numerator, shift, bpm);
    std::uint32_t removed = 0;
    bool anyAdded = false;
    auto bar = std::next(bars.begin());
    if (bar == bars.end()) return;
    for (auto next = std::next(bar); next != bars.end(); next = std::next(bar)) {
        const std::uint32_t gap = next->first - bar->first;
        if (gap < closestBars) {
            bars.erase(next);
            ++removed;
            continue;
        }
        if (gap > widestBars) {
            const std::size_t before = bars.size();
            FillGap(bars, bar, gap, spacing, numerator);
            anyAdded = anyAdded || bars.size() > before;
        }
        const std::uint32_t number = bar->second.barIndex + 1;
        ++bar;  // the next one, which may be new
        bar->second.barIndex = anyAdded ? number : bar->second.barIndex - removed;
    }
}

std::pair<TBars::const_iterator, TBars::const_iterator> TNotes::BarsInRange(std::uint32_t from,
                                                                            std::uint32_t to) const {
    const auto first = bars.upper_bound(from);
    return {first, from > to ? first : bars.upper_bound(to)};
}
