// The same audio in blocks of every size gives the same notes and leaves the same detector behind.
#include <bit>
#include <cmath>
#include <cstring>

#include "module/plugin_entry.h"
#include "plugin/plugin_object.h"
#include "tests/plugin/fake_host.h"
#include "torture/row.h"

namespace {

constexpr std::size_t length = 131072;  // samples, at 48 kHz

// Notes that come and go on top of a constant, which keeps each 16-bit sample at 1 or more, so that no block
// of any size is silent: 30000 x (0.5 - 0.45) = 1500.
std::vector<float> Piece() {
    constexpr int notes[] = {57, 60, 64, 69, 45, 76, 50, 81};
    std::vector<float> piece(length, 0.5F);
    for (std::size_t i = 0; i < length; ++i)
        for (std::size_t voice = 0; voice < 3; ++voice) {
            const int note = notes[(i / 12000 + 3 * voice) % 8];
            const double hertz = 440 * std::exp2((note - 69) / 12.0);
            piece[i] +=
                static_cast<float>(0.15 * std::sin(2 * M_PI * hertz * static_cast<double>(i) / 48000));
        }
    return piece;
}

class Hash {
public:
    template <typename Array>
    void Add(const Array& elements, int count) {
        for (int i = 0; i < count; ++i) Add(elements[i]);
    }
    template <typename Number>
    void Add(Number number) {  // FNV-1a, byte by byte
        unsigned char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        for (const unsigned char byte : bytes) value = (value ^ byte) * 1099511628211U;
    }
    std::uint64_t value = 14695981039346656037U;
};

std::uint64_t StateHash(const TRealTimeTS107& d) {
    Hash hash;
    const int bands = d.numBands;
    for (const auto* const array :
         {&d.stateA, &d.stateB, &d.energy, &d.amplitude, &d.eqAmplitude, &d.separated})
        hash.Add(*array, bands);
    for (const auto* const array : {&d.rising, &d.peakOlder, &d.peakOld, &d.peakNow, &d.noteOn})
        hash.Add(*array, bands);
    std::vector<std::int32_t> re(static_cast<std::size_t>(bands)), im(re);
    d.FoldedSoFar(re.data(), im.data());
    for (std::size_t i = 0; i < re.size(); ++i) hash.Add(re[i]), hash.Add(im[i]);
    hash.Add(d.blockCountdown), hash.Add(d.frameCountdown), hash.Add(d.threshold), hash.Add(d.peakLevel);
    return hash.value;
}

struct Heard {
    std::vector<FakeHost::Event> events;
    std::uint64_t state = 0;
};

Heard Hear(int blockSize) {
    static const std::vector<float> piece = Piece();
    FakeHost host(2400);
    host.sampleRate = 48000;
    Plug plug(OpenPlugin(FakeHost::Callback));
    Heard heard;
    if (!plug.Play(host, piece, blockSize)) return heard;
    heard.events = host.TakenEvents();
    heard.state =
        StateHash(dynamic_cast<CORVA_vst&>(*static_cast<AudioEffect*>(plug.effect->object)).detector);
    return heard;
}

void TrySize(Trial& trial) {
    static const Heard whole = Hear(static_cast<int>(length));
    const Heard cut = Hear(static_cast<int>(trial.number) + 1);
    trial.Require(whole.events.size() > 20, "the piece has no notes");
    trial.Require(cut.events == whole.events,
                  "other events than in one block: " + std::to_string(cut.events.size()) + " against " +
                      std::to_string(whole.events.size()));
    trial.Require(cut.state == whole.state, "the detector is in another state than after one block");
    Trial::Figure("events", static_cast<double>(whole.events.size()));
}

const Registered sizes({"PRO-1", "every block size from 1 to 65536 gives the same notes and state",
                        inRelease | inAddress, 65536, 256, 60, TrySize, 90});

}  // namespace
