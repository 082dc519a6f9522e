#pragma once
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vst2/audio_effect.h"

// The three process calls.
enum class Way { accumulating, replacing, doubleReplacing };
constexpr Way ways[] = {Way::accumulating, Way::replacing, Way::doubleReplacing};

// A host with one instance of the plug-in: it counts what it is asked, keeps the events that it is sent, and
// answers as its fields say. As many as are needed live side by side.
//
// Threads: calls into the plug-in from any, as it allows; what is kept has no lock, so a test in which two
// threads call clears `keepsEvents` and reads the counts alone.
class Host {
public:
    struct Event {
        std::int64_t at = 0;  // on the sample clock
        std::string data;     // the three bytes of the message
        bool operator==(const Event& other) const { return at == other.at && data == other.data; }
    };
    // A call of the plug-in's, as it came.
    struct Request {
        std::int32_t opcode, index;
        std::intptr_t value;
        void* ptr;
        float opt;
    };

    explicit Host(std::intptr_t hostRate = 44100) : sampleRate(hostRate) { events.reserve(4096); }
    ~Host() { Close(); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // Opens by an entry that takes the host's callback and returns a record: OpenPlugin, one found in a file,
    // or a lambda. False where it returns null.
    template <typename Entry>
    bool Open(Entry entry) {
        Host* const before = opening;
        opening = this;
        effect = entry(Callback);
        opening = before;
        if (effect != nullptr) effect->resvd1 = reinterpret_cast<std::intptr_t>(this);  // the host's own word
        return effect != nullptr;
    }
    void Close() {
        if (effect != nullptr) Call(effClose);
        effect = nullptr;
    }

    std::intptr_t Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* ptr = nullptr, float opt = 0) const {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
    void Set(std::int32_t index, float value) const { effect->setParameter(effect, index, value); }
    float Get(std::int32_t index) const { return effect->getParameter(effect, index); }
    // What a text call leaves in the 64 bytes that hosts reserve; a failure of the test if it writes beyond.
    std::string Text(std::int32_t opcode, std::int32_t index = 0) const;

    // One block by the pointers to the samples, in one of the three ways; either may be null.
    void Process(Way way, float* in, float* out, std::int32_t frames);
    void Process(double* in, double* out, std::int32_t frames);
    // Audio in blocks of `block` samples. False unless what comes out is what went in. In place, what comes
    // out is not looked at.
    bool Play(const std::vector<float>& audio, std::size_t block = 512, Way way = Way::replacing,
              bool inPlace = false);

    // The plug-in object, where the entry was linked code.
    template <typename T>
    T& Object() const {
        return dynamic_cast<T&>(*static_cast<AudioEffect*>(effect->object));
    }

    int Count(std::int32_t opcode) const { return asked[static_cast<std::size_t>(opcode)]; }
    std::vector<Event> TakenEvents();
    // Note ons less note offs of the events kept.
    int Sounding() const;

    static std::intptr_t Callback(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                  std::intptr_t value, void* ptr, float opt);

    AEffect* effect = nullptr;

    // How it answers.
    std::intptr_t version = 2400, vendorVersion = 1234, sampleRate;
    const char* vendor = "Maker";   // null: the host fills in nothing
    const char* product = nullptr;  // likewise
    bool unterminated = false;      // 64 bytes of 'x' for its vendor, without a terminator
    bool keepsEvents = true;
    // In the place of all of this, if it is set and returns true.
    std::function<bool(const Request&, std::intptr_t& answer)> answers;
    std::function<void()> atNextEvent;  // what it does once, from inside the plug-in's call
    void (*atCall)() = nullptr;         // at the begin of each call to it
    void (*inProcess)(bool in) =
        nullptr;  // a process call begins or the host returns to it; ends or leaves it

    // What it saw.
    std::array<std::atomic<int>, 64> asked{};
    std::atomic<int> calls{0};
    std::vector<Event> events;
    Request last{};
    std::int64_t clock = 0;  // samples handed over before the block in progress

private:
    std::intptr_t Answer(const Request& request);
    void Enter(bool in) const {
        if (inProcess != nullptr) inProcess(in);
    }
    static thread_local Host* opening;
    static thread_local bool processing;
};

// The same events, `samples` later.
inline std::vector<Host::Event> Later(std::vector<Host::Event> events, std::int64_t samples) {
    for (Host::Event& event : events) event.at += samples;
    return events;
}
