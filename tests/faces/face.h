#pragma once
#include "tests/support/host.h"

inline void PrintTo(const Host::Event& event, std::ostream* out) {
    *out << event.at << std::hex;
    for (const char byte : event.data) *out << ' ' << (byte & 0xFF);
    *out << std::dec;
}

// One instance of the plug-in in a host of its format.
class Face {
public:
    Face() { events.reserve(1 << 16); }
    virtual ~Face() = default;
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    virtual bool Init() { return true; }
    virtual void SetActive(bool active) = 0;
    virtual void Set(std::int32_t index, float value) = 0;  // before the next block
    virtual float Get(std::int32_t index) = 0;
    virtual void SetRate(double) {}  // Hz, from the next SetActive on
    virtual std::string Save() { return {}; }
    virtual bool Load(const std::string&) { return false; }
    // The parent's number.
    virtual bool OpenWindow(std::uint32_t) { return false; }
    virtual std::int32_t WindowWidth() { return 0; }
    virtual void IdleWindow() {}
    virtual void CloseWindow() {}

    // A block; pointers may be null or equal.
    void Process(const float* in, float* out, std::uint32_t frames) {
        taken = 0;
        Run(in, out, frames);
        clock += frames;
    }
    // Audio in blocks of a length. False unless what comes out is what went in.
    bool Play(const std::vector<float>& audio, std::size_t block) {
        std::vector<float> out(audio.size());
        for (std::size_t at = 0; at < audio.size(); at += block)
            Process(&audio[at], &out[at], static_cast<std::uint32_t>(std::min(block, audio.size() - at)));
        return out == audio;
    }

    std::vector<Host::Event> events;  // three bytes each, whatever the format sends
    std::int32_t hostWidth = 0;       // that its window asked for
    double scale = 0;                 // of the display, as the host says; 0 for nothing
    std::size_t space = 1 << 20;      // for events of one block

protected:
    virtual void Run(const float* in, float* out, std::uint32_t frames) = 0;
    void Keep(std::int64_t frame, std::string data) {
        data.resize(3);
        events.push_back({clock + frame, std::move(data)});
    }
    // False where there is no space left in this block.
    bool HasSpace() { return taken++ < space; }
    std::int64_t clock = 0;

private:
    std::size_t taken = 0;
};
