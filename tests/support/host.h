#pragma once
#include "base/relaxed.h"
#include "tests/support/test.h"
#include "vst2/audio_effect.h"

// The three process calls.
enum class Way { accumulating, replacing, doubleReplacing };
constexpr Way ways[] = {Way::accumulating, Way::replacing, Way::doubleReplacing};

// A host with one instance of the plug-in: it keeps the events that it is sent, and answers as its fields
// say. As many as are needed live side by side.
//
// Threads: calls into the plug-in from any, as it allows; what is kept has no lock, so a test in which two
// threads call clears `keepsEvents`.
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

    // One block by the pointers to the samples, in one of the three ways; either may be null.
    template <typename Sample>
    void Process(Way way, Sample* in, Sample* out, std::int32_t frames) {
        processing = true;
        Enter(true);
        if constexpr (std::is_same_v<Sample, double>)
            effect->processDoubleReplacing(effect, &in, &out, frames);
        else
            (way == Way::accumulating ? effect->process : effect->processReplacing)(effect, &in, &out,
                                                                                    frames);
        Enter(false);
        processing = false;
        clock = clock + std::max(frames, 0);
    }
    // Audio in blocks of `block` samples. False unless what comes out is what went in. In place, what comes
    // out is not looked at.
    bool Play(const std::vector<float>& audio, std::size_t block = 512, Way way = Way::replacing,
              bool inPlace = false) {
        const auto play = [&](auto in) {
            auto out = in;
            std::fill(out.begin(), out.end(), 0);
            const auto before = in;
            for (std::size_t at = 0; at < in.size(); at += block)
                Process(way, &in[at], inPlace ? &in[at] : &out[at],
                        static_cast<std::int32_t>(std::min(block, in.size() - at)));
            // What is added to 0 may lose the sign of a zero.
            return inPlace || (way == Way::accumulating && out == before) ||
                   std::memcmp(out.data(), before.data(), before.size() * sizeof before[0]) == 0;
        };
        return way == Way::doubleReplacing ? play(std::vector<double>(audio.begin(), audio.end()))
                                           : play(audio);
    }

    // The plug-in object, where the entry was linked code.
    template <typename T>
    T& Object() const {
        return dynamic_cast<T&>(*static_cast<AudioEffect*>(effect->object));
    }

    std::vector<Event> TakenEvents() {
        std::vector<Event> taken = std::exchange(events, {});
        events.reserve(4096);
        return taken;
    }
    // Note ons less note offs of the events kept.
    int Sounding() const {
        int count = 0;
        for (const Event& event : events)
            count += (event.data[0] & '\xF0') == '\x90' ? 1 : (event.data[0] & '\xF0') == '\x80' ? -1 : 0;
        return count;
    }

    static std::intptr_t Callback(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                  std::intptr_t value, void* ptr, float opt) {
        Host* const self =
            effect != nullptr && effect->resvd1 != 0 ? reinterpret_cast<Host*>(effect->resvd1) : opening;
        if (self == nullptr) return 0;
        const bool left = std::exchange(processing, false);
        if (left) self->Enter(false);
        struct Return {
            ~Return() {
                processing = inside;
                if (inside) self->Enter(true);
            }
            Host* self;
            bool inside;
        } const back{self, left};
        return self->Answer({opcode, index, value, ptr, opt});
    }

    AEffect* effect = nullptr;

    // How it answers.
    std::intptr_t version = 2400, sampleRate;
    const char* product = nullptr;  // null: the host fills in nothing
    bool keepsEvents = true;
    // In the place of all of this, if it is set and returns true.
    std::function<bool(const Request&, std::intptr_t& answer)> answers;
    void (*atCall)() = nullptr;  // at the begin of each call to it
    // A process call begins or the host returns to it; ends or leaves it.
    void (*inProcess)(bool in) = nullptr;

    // What it saw.
    std::vector<Event> events;
    Relaxed<std::int64_t> clock = 0;  // samples handed over before the block in progress

private:
    std::intptr_t Answer(const Request& request) {
        if (atCall != nullptr) atCall();
        std::intptr_t answer = 0;
        if (answers && answers(request, answer)) return answer;
        const auto give = [&](const char* text) {
            if (text != nullptr) std::strcpy(static_cast<char*>(request.ptr), text);
            return static_cast<std::intptr_t>(text != nullptr);
        };
        switch (request.opcode) {
            case audioMasterVersion: return version;
            case audioMasterGetSampleRate: return sampleRate;
            case audioMasterGetVendorString: return give("Maker");
            case audioMasterGetProductString: return give(product);
            case audioMasterProcessEvents: {
                if (!keepsEvents) return 0;
                const VstEvents& sent = *static_cast<const VstEvents*>(request.ptr);
                for (std::int32_t i = 0; i < sent.numEvents; ++i) {
                    const auto& event = *reinterpret_cast<const VstMidiEvent*>(sent.events[i]);
                    events.push_back({clock + event.deltaFrames, std::string(event.midiData, 3)});
                }
                return 0;
            }
            default: return 0;
        }
    }
    void Enter(bool in) const {
        if (inProcess != nullptr) inProcess(in);
    }
    static inline thread_local Host* opening = nullptr;
    static inline thread_local bool processing = false;
};

// The same events, `samples` later.
inline std::vector<Host::Event> Later(std::vector<Host::Event> events, std::int64_t samples) {
    for (Host::Event& event : events) event.at += samples;
    return events;
}
