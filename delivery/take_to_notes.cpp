#include <algorithm>
#include <memory>
#include <numeric>

#include "delivery/rt_recording.h"
#include "notes/notes.h"

namespace {

constexpr std::uint32_t ticksPerSecond = 22050;
constexpr std::size_t channels = 16;
constexpr std::size_t pitches = 128;

enum Kind : std::uint32_t { noteOff = 0x80, noteOn = 0x90, programChange = 0xC0 };

std::uint32_t KindOf(std::uint32_t message) {
    return message & 0xF0U;
}
std::uint8_t FirstData(std::uint32_t message) {
    return static_cast<std::uint8_t>(message >> 8 & 127U);
}
std::uint8_t SecondData(std::uint32_t message) {
    return static_cast<std::uint8_t>(message >> 16 & 127U);
}

// At one sample a program change comes before a note on, and that before a note off. The whole status byte is
// looked at, so that on channels other than the first all events rank alike; takes have always sorted so.
int Rank(std::uint32_t message) {
    switch (message & 0xFFU) {
        case noteOff: return 3;
        case noteOn: return 2;
        case programChange: return 1;
        default: return 0;
    }
}

// A note that has begun and not yet ended.
struct Slot {
    std::uint32_t beginTicks = 0;
    std::uint8_t velocity = 0;
    std::uint8_t programAtBegin = 0;
    bool open = false;
};

class TakeReader {
public:
    TakeReader(TNotes& target, std::uint32_t layers, std::uint32_t highest, std::uint32_t rate)
        : notes(target), layerCount(layers), top(highest), sampleRate(rate) {}

    void Read(const TRecordEvent& event) {
        const std::uint32_t channel = event.message & 15U;
        const std::uint8_t note = FirstData(event.message);
        const auto ticks =
            static_cast<std::uint32_t>(static_cast<std::uint64_t>(event.time) * ticksPerSecond / sampleRate);
        Slot& slot = slots[note * channels + channel];
        switch (KindOf(event.message)) {
            case noteOff: Close(slot, note, channel, ticks); break;
            case noteOn:
                Close(slot, note, channel, ticks);  // a second note on ends the first
                slot = {ticks, SecondData(event.message), program[channel], true};
                break;
            case programChange: program[channel] = note; break;
            default: break;
        }
    }

private:
    void Close(Slot& slot, std::uint8_t note, std::uint32_t channel, std::uint32_t ticks) {
        if (!slot.open) return;
        slot.open = false;
        const std::uint32_t layer = top == 0 ? 1 : layerCount - layerCount * slot.velocity / (top + 1);
        notes.AddNote(slot.beginTicks, ticks, static_cast<std::uint8_t>(note - 24),
                      VelocityToLevel(slot.velocity), slot.programAtBegin, static_cast<std::uint8_t>(layer),
                      static_cast<std::uint8_t>(channel + 1));
    }

    TNotes& notes;
    const std::uint32_t layerCount;
    const std::uint32_t top;  // the take's highest velocity
    const std::uint32_t sampleRate;
    std::uint8_t program[channels] = {};
    Slot slots[pitches * channels];
};

}  // namespace

void TakeToNotes(const std::vector<TRecordEvent>& take, TNotes& notes, std::uint32_t layerCount,
                 std::uint32_t sampleRate) {
    if (sampleRate == 0) return;
    bool anyNote = false;
    std::uint32_t top = 0;
    for (const TRecordEvent& event : take) {
        if (KindOf(event.message) != noteOn) continue;
        anyNote = true;
        top = std::max<std::uint32_t>(top, SecondData(event.message));
    }
    if (!anyNote) return;
    notes.ReserveNotes(take.size() / 2);

    std::vector<std::size_t> order(take.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        if (take[a].time != take[b].time) return take[a].time < take[b].time;
        const int rankOfA = Rank(take[a].message);
        const int rankOfB = Rank(take[b].message);
        return rankOfA != rankOfB ? rankOfA < rankOfB : a < b;  // equal events keep their order
    });

    const auto reader =
        std::make_unique<TakeReader>(notes, std::clamp<std::uint32_t>(layerCount, 1, 9), top, sampleRate);
    for (const std::size_t index : order) reader->Read(take[index]);
}
