// Blocks of any length, at any address, with any pointer missing.
#include <fstream>

#include "torture/row.h"
#include "torture/rows/guarded.h"
#include "torture/rows/plug_in.h"
#include "torture/rows/samples.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool memoryIsOurs = false;  // the sanitizer keeps what is freed, and more beside each piece
#else
constexpr bool memoryIsOurs = true;
#endif

// A sum of two numbers that are none may keep the payload of either, so what is added is audio.
template <typename Sample>
Sample SampleFor(Door door, std::mt19937_64& random) {
    return door == accumulating ? UsualSample<Sample>(random) : AnySample<Sample>(random);
}

template <typename Sample>
Sample Load(const unsigned char* from) {
    Sample value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

// The output that a block at `in` leaves at `out`, both offsets into `memory`, had the input been read first.
template <typename Sample>
std::vector<unsigned char> Expected(Door door, const std::vector<unsigned char>& memory, std::size_t in,
                                    std::size_t out, std::size_t frames) {
    std::vector<unsigned char> after = memory;
    for (std::size_t i = 0; i < frames; ++i) {
        Sample sample = Load<Sample>(&memory[in + i * sizeof(Sample)]);
        if (door == accumulating) sample += Load<Sample>(&memory[out + i * sizeof(Sample)]);
        std::memcpy(&after[out + i * sizeof(Sample)], &sample, sizeof sample);
    }
    return after;
}

// A block whose input begins at byte `in` of a buffer, and its output at byte `out`.
template <typename Sample>
void TryPlaces(Trial& trial, Door door, std::size_t shift, std::size_t in, std::size_t out,
               std::size_t frames) {
    Moated buffer(std::max(in, out) + frames * sizeof(Sample), shift);
    for (std::size_t at = 0; at + sizeof(Sample) <= buffer.bytes; at += sizeof(Sample)) {
        const Sample sample = SampleFor<Sample>(door, trial.random);
        std::memcpy(buffer.At(static_cast<std::ptrdiff_t>(at)), &sample, sizeof sample);
    }
    // Where the two lie askew, samples are read across others, which may be numbers that are none.
    for (std::size_t i = 0; door == accumulating && i < frames; ++i)
        for (const std::size_t place : {in, out}) {
            const auto sample = UsualSample<Sample>(trial.random);
            std::memcpy(buffer.At(static_cast<std::ptrdiff_t>(place + i * sizeof sample)), &sample,
                        sizeof sample);
        }
    const std::vector<unsigned char> before(buffer.At(), buffer.At() + buffer.bytes);
    const std::vector<unsigned char> expected = Expected<Sample>(door, before, in, out, frames);
    std::vector<short> heard;
    for (std::size_t i = 0; i < frames; ++i)
        heard.push_back(Converted(Load<Sample>(&before[in + i * sizeof(Sample)])));

    PlugIn plugIn;
    plugIn.Feed(door, buffer.At<Sample>(static_cast<std::ptrdiff_t>(in)),
                buffer.At<Sample>(static_cast<std::ptrdiff_t>(out)), static_cast<std::int32_t>(frames));
    trial.Require(std::memcmp(buffer.At(), expected.data(), buffer.bytes) == 0,
                  "input at " + std::to_string(in) + ", output at " + std::to_string(out) +
                      ": not the input as it was, or more than the block written");
    trial.Require(buffer.Intact(), "written outside the buffer");
    trial.Require(plugIn.Object().samples == heard, "the detector heard something else");
}

// --- PRO-3 ---

constexpr std::int32_t lengths[] = {
    0, -1, -50000, std::numeric_limits<std::int32_t>::min(), 1 << 20, -(1 << 24), (1 << 20) + 1, 1 << 24};

std::size_t ResidentBytes() {
    std::size_t all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

template <typename Sample>
void TryNoLength(Trial& trial, Door door, std::int32_t frames) {
    PlugIn plugIn;
    plugIn.Play(Tones({69}, 0.3, 44100));
    trial.Require(!plugIn.Object().stopped, "a tone does not start detection");
    GuardedPages pages(1);
    auto* const nowhere = reinterpret_cast<Sample*>(pages.End());
    plugIn.Feed(door, nowhere, nowhere, frames);
    trial.Require(plugIn.Object().stopped, "no length counts as silent, and did not");
    trial.Require(plugIn.Object().totalSamples == static_cast<std::uint64_t>(plugIn.clock),
                  "samples counted");
}

template <typename Sample>
void TryLength(Trial& trial, Door door, std::int32_t frames) {
    const std::size_t bytes = static_cast<std::size_t>(frames) * sizeof(Sample);
    Moated in(bytes), out(bytes);
    for (std::int32_t i = 0; i < frames; ++i) in.At<Sample>()[i] = SampleFor<Sample>(door, trial.random);
    std::memset(out.At(), 0, bytes);
    PlugIn plugIn;
    plugIn.Feed(door, in.At<Sample>(), out.At<Sample>(), 1);
    std::memset(out.At(), 0, sizeof(Sample));
    const std::size_t before = ResidentBytes();
    plugIn.Feed(door, in.At<Sample>(), out.At<Sample>(), frames);
    const std::size_t grown = std::max(ResidentBytes(), before) - before;
    const std::size_t allowed = static_cast<std::size_t>(frames) * 2 * 3 / 2 + (std::size_t{1} << 20);
    if (memoryIsOurs) {
        trial.Require(grown <= allowed, "grown by " + std::to_string(grown) + " bytes");
        Trial::Figure("grown, bytes a sample", static_cast<double>(grown) / frames);
    }
    trial.Require(std::memcmp(in.At(), out.At(), bytes) == 0, "the audio did not pass");
    trial.Require(in.Intact() && out.Intact(), "written outside the buffers");
}

template <typename Sample>
void TryLengthAndOne(Trial& trial, Door door, std::int32_t frames) {
    frames > 0 ? TryLength<Sample>(trial, door, frames) : TryNoLength<Sample>(trial, door, frames);
    TryPlaces<Sample>(trial, door, 0, 0, sizeof(Sample), 1);
}

void TryBlockLength(Trial& trial) {
    const auto door = static_cast<Door>(trial.number % doorCount);
    const std::int32_t frames = lengths[trial.number / doorCount];
    door == doubleReplacing ? TryLengthAndOne<double>(trial, door, frames)
                            : TryLengthAndOne<float>(trial, door, frames);
}

const Registered lengthRow({"PRO-3", "takes blocks of any length, and none", inRelease | inAddress,
                            std::size(lengths) * doorCount, 1, 60, TryBlockLength});

// --- PRO-4 ---

constexpr std::size_t block = 1024;  // samples
constexpr std::uint64_t missingKinds = 6, alignments = 8 * 8, overlaps = 2 * block + 1;
constexpr std::uint64_t placesOfDoor = missingKinds + alignments + overlaps;

// What is missing: the list of inputs, of outputs, both; the first input, the first output, both.
template <typename Sample>
void TryMissing(Trial& trial, Door door, std::uint64_t kind) {
    const bool noInput = kind % 3 != 1, noOutput = kind % 3 != 0, noList = kind < 3;
    Moated in(block * sizeof(Sample)), out(block * sizeof(Sample));
    std::vector<short> heard;
    for (std::size_t i = 0; i < block; ++i) {
        in.At<Sample>()[i] = UsualSample<Sample>(trial.random);
        out.At<Sample>()[i] = Sample(0.5);
        heard.push_back(noInput ? short{0} : Converted(in.At<Sample>()[i]));
    }
    Sample* input = noInput ? nullptr : in.At<Sample>();
    Sample* output = noOutput ? nullptr : out.At<Sample>();
    PlugIn plugIn;
    plugIn.Feed(door, noInput && noList ? nullptr : &input, noOutput && noList ? nullptr : &output,
                static_cast<std::int32_t>(block));
    trial.Require(plugIn.Object().samples == heard, "the detector heard something else");
    trial.Require(plugIn.Object().stopped == noInput, "detection runs for what is missing, or does not run");
    for (std::size_t i = 0; i < block; ++i) {
        const Sample expected = noOutput || door == accumulating ? Sample(0.5) : Sample(0);
        trial.Require(out.At<Sample>()[i] == expected, "output without an input, or written where null");
    }
    trial.Require(in.Intact() && out.Intact(), "written outside the buffers");
}

template <typename Sample>
void TryPointersOf(Trial& trial, Door door, std::uint64_t place) {
    constexpr std::size_t size = block * sizeof(Sample);
    if (place < missingKinds) {
        TryMissing<Sample>(trial, door, place);
    } else if (place < missingKinds + alignments) {  // each by itself, a byte on
        const std::uint64_t both = place - missingKinds;
        TryPlaces<Sample>(trial, door, both % 8, 0, size + both / 8, block);
    } else {  // from a block before to a block behind, by whole samples
        const std::size_t overlap = place - missingKinds - alignments;
        TryPlaces<Sample>(trial, door, 0, size, overlap * sizeof(Sample), block);
    }
}

void TryPointers(Trial& trial) {
    const auto door = static_cast<Door>(trial.number / placesOfDoor);
    const std::uint64_t place = trial.number % placesOfDoor;
    door == doubleReplacing ? TryPointersOf<double>(trial, door, place)
                            : TryPointersOf<float>(trial, door, place);
}

const Registered pointers({"PRO-4", "takes buffers at any address, missing, or one over the other",
                           inRelease | inAddress, placesOfDoor* doorCount, 300, 20, TryPointers});

// --- PRO-5 ---

// Every length; input and output apart, so that the input must stay, and each output sample must come.
template <typename Sample>
void TryWholeBlock(Trial& trial, Door door, std::int32_t frames) {
    const std::size_t bytes = static_cast<std::size_t>(frames) * sizeof(Sample);
    Moated in(bytes), out(bytes);
    std::vector<Sample> sent, due;
    for (std::int32_t i = 0; i < frames; ++i) {
        sent.push_back(in.At<Sample>()[i] = SampleFor<Sample>(door, trial.random));
        out.At<Sample>()[i] = door == accumulating ? Sample(0.25) : AnySample<Sample>(trial.random);
        due.push_back(door == accumulating ? sent.back() + Sample(0.25) : sent.back());
    }
    PlugIn plugIn;
    plugIn.Feed(door, in.At<Sample>(), out.At<Sample>(), frames);
    trial.Require(std::memcmp(in.At(), sent.data(), bytes) == 0, "the input was written");
    trial.Require(std::memcmp(out.At(), due.data(), bytes) == 0, "not each sample came");
    trial.Require(in.Intact() && out.Intact(), "written outside the buffers");
}

void TryMoat(Trial& trial) {
    const auto door = static_cast<Door>(trial.number % doorCount);
    const auto frames =
        static_cast<std::int32_t>(trial.number / doorCount * 40503 % 65536 + 1);  // all, mixed
    door == doubleReplacing ? TryWholeBlock<double>(trial, door, frames)
                            : TryWholeBlock<float>(trial, door, frames);
}

const Registered moats({"PRO-5", "writes the block and nothing beside it", inRelease | inAddress,
                        std::uint64_t{65536} * doorCount, 300, 20, TryMoat});

}  // namespace
