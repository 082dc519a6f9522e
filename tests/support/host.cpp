#include "tests/support/host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string_view>
#include <utility>

thread_local Host* Host::opening = nullptr;
thread_local bool Host::processing = false;

std::intptr_t Host::Callback(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                             void* ptr, float opt) {
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

std::intptr_t Host::Answer(const Request& request) {
    if (atCall != nullptr) atCall();
    // Relaxed, so that the counting does not order two threads.
    calls.fetch_add(1, std::memory_order_relaxed);
    if (request.opcode >= 0 && request.opcode < 64)
        asked[static_cast<std::size_t>(request.opcode)].fetch_add(1, std::memory_order_relaxed);
    std::intptr_t answer = 0;
    if (answers && answers(request, answer)) return answer;
    if (keepsEvents) last = request;
    const auto give = [&](const char* text) {
        if (text != nullptr) std::strcpy(static_cast<char*>(request.ptr), text);
        return static_cast<std::intptr_t>(text != nullptr);
    };
    switch (request.opcode) {
        case audioMasterVersion: return version;
        case audioMasterGetSampleRate: return sampleRate;
        case audioMasterGetVendorString:
            if (unterminated) return std::memset(request.ptr, 'x', 64), 1;
            return give(vendor);
        case audioMasterGetProductString: return give(product);
        case audioMasterGetVendorVersion: return vendorVersion;
        case audioMasterCanDo: {
            const std::string_view question(static_cast<const char*>(request.ptr));
            return question == "offline" ? -1 : question == "sizeWindow" ? 1 : 0;
        }
        case audioMasterProcessEvents: {
            if (!keepsEvents) return 0;
            const VstEvents& sent = *static_cast<const VstEvents*>(request.ptr);
            for (std::int32_t i = 0; i < sent.numEvents; ++i) {
                const auto& event = *reinterpret_cast<const VstMidiEvent*>(sent.events[i]);
                events.push_back({clock + event.deltaFrames, std::string(event.midiData, 3)});
            }
            if (const auto once = std::exchange(atNextEvent, nullptr)) once();
            return 0;
        }
        default: return 0;
    }
}

std::string Host::Text(std::int32_t opcode, std::int32_t index) const {
    char text[96];
    std::memset(text, '\x7F', sizeof text);
    Call(opcode, index, 0, text);
    EXPECT_TRUE(std::all_of(text + 64, text + 96, [](char byte) { return byte == '\x7F'; }))
        << "opcode " << opcode << " writes beyond 64 bytes";
    return std::string(text, strnlen(text, 64) == 64 ? 0 : std::strlen(text));
}

void Host::Process(Way way, float* in, float* out, std::int32_t frames) {
    processing = true;
    Enter(true);
    (way == Way::accumulating ? effect->process : effect->processReplacing)(effect, &in, &out, frames);
    Enter(false);
    processing = false;
    clock += std::max(frames, 0);
}

void Host::Process(double* in, double* out, std::int32_t frames) {
    processing = true;
    Enter(true);
    effect->processDoubleReplacing(effect, &in, &out, frames);
    Enter(false);
    processing = false;
    clock += std::max(frames, 0);
}

bool Host::Play(const std::vector<float>& audio, std::size_t block, Way way, bool inPlace) {
    const auto play = [&](auto in, auto call) {
        auto out = in;
        std::fill(out.begin(), out.end(), 0);
        const auto before = in;
        for (std::size_t at = 0; at < in.size(); at += block)
            call(&in[at], inPlace ? &in[at] : &out[at],
                 static_cast<std::int32_t>(std::min(block, in.size() - at)));
        // What is added to 0 may lose the sign of a zero.
        return inPlace || (way == Way::accumulating && out == before) ||
               std::memcmp(out.data(), before.data(), before.size() * sizeof before[0]) == 0;
    };
    if (way == Way::doubleReplacing)
        return play(std::vector<double>(audio.begin(), audio.end()),
                    [&](double* in, double* out, std::int32_t frames) { Process(in, out, frames); });
    return play(audio, [&](float* in, float* out, std::int32_t frames) { Process(way, in, out, frames); });
}

std::vector<Host::Event> Host::TakenEvents() {
    std::vector<Event> taken = std::exchange(events, {});
    events.reserve(4096);
    return taken;
}

int Host::Sounding() const {
    int count = 0;
    for (const Event& event : events)
        count += (event.data[0] & '\xF0') == '\x90' ? 1 : (event.data[0] & '\xF0') == '\x80' ? -1 : 0;
    return count;
}
