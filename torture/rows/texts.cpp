// Texts to the host, in buffers of which no byte more than is due may be touched, and the one from the host.
#include <memory>
#include <string>

#include "platform/midi_out_devices.h"
#include "platform/system_midi_out.h"
#include "torture/row.h"
#include "torture/rows/guarded.h"
#include "torture/rows/odd_settings.h"
#include "torture/rows/plug_in.h"

namespace {

// --- PAR-3 ---

// Devices with names of any bytes and any length. They open and take everything.
class OddlyNamed : public MidiBackend {
public:
    explicit OddlyNamed(Trial& trial) {
        constexpr const char* pieces[] = {"a", " ", "\xC3\xA9", "\xE2\x99\xAF", "\xF0\x9D\x84\x9E"};
        for (std::size_t count = 0; count < 100; ++count) {
            std::string name;
            const std::uint64_t length = trial.Below(trial.OneIn(4) ? 4097 : 70);
            const bool anyBytes = trial.OneIn(4);
            while (name.size() < length)
                anyBytes ? name.push_back(static_cast<char>(trial.Below(255) + 1))
                         : static_cast<void>(name += pieces[trial.Below(std::size(pieces))]);
            name.resize(length);  // which may cut a character
            names.push_back(name);
        }
    }
    std::vector<std::string> DeviceNames() override { return names; }
    MidiOpening Open(const std::string&) override { return {nullptr, MMSYSERR_ALLOCATED}; }

private:
    std::vector<std::string> names;
};

bool IsLegal(std::string_view text) {  // UTF-8
    for (std::size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (length == 0 || lead > 0xF4 || at + length > text.size()) return false;
        for (std::size_t i = 1; i < length; ++i)
            if ((static_cast<unsigned char>(text[at + i]) & 0xC0U) != 0x80U) return false;
        at += length;
    }
    return true;
}

class TextReader {
public:
    TextReader(Trial& tried, PlugIn& asked) : trial(tried), plugIn(asked), wide(4096), tight(256) {}

    // In a buffer larger than any promise, then in those that end where the memory does. A text takes its
    // bytes and its terminator and nothing behind them, so it fits wherever they fit.
    void Read(std::int32_t opcode, std::int32_t index, std::size_t bound) {
        constexpr char untouched = '\x7F';
        char* const room = wide.Last(4096, untouched);
        plugIn.Call(opcode, index, 0, room);
        const std::string told =
            "opcode " + std::to_string(opcode) + ", index " + std::to_string(index) + ": ";
        const std::size_t length = strnlen(room, 4096);
        trial.Require(length < bound, told + std::to_string(length) + " bytes");
        trial.Require(std::all_of(room + std::min<std::size_t>(length + 1, 4096), room + 4096,
                                  [](char byte) { return byte == untouched; }),
                      told + "written behind the terminator");
        const std::string text(room, length);
        trial.Require(IsLegal(text), told + "no UTF-8");
        for (const std::size_t size : {8U, 24U, 32U, 64U, 128U, 256U}) {
            if (size <= length) continue;
            char* const place = tight.Last(size, untouched);
            plugIn.Call(opcode, index, 0, place);
            trial.Require(text == place, told + "another text in less room");
            trial.Require(tight.Untouched(size, untouched), told + "written before the buffer");
        }
    }

private:
    Trial& trial;
    PlugIn& plugIn;
    GuardedPages wide, tight;
};

void TryTexts(Trial& trial) {
    constexpr std::size_t nameRoom = 23, displayRoom = 64;
    std::vector<std::unique_ptr<MidiBackend>> layers;
    layers.push_back(std::make_unique<OddlyNamed>(trial));
    SystemMidiOut devices(std::move(layers));
    SubstituteMidiOut(&devices);
    {
        PlugIn plugIn;
        TextReader reader(trial, plugIn);
        const float value = OddSettings(trial)[trial.number % oddSettings];
        for (std::int32_t index = -1; index <= 96; ++index) {
            const bool opensDevice = index == paramDeviceEnabled;  // and would complain of it to the user
            plugIn.effect->setParameter(plugIn.effect, index, opensDevice ? 0.0F : value);
            reader.Read(effGetParamName, index, nameRoom);
            reader.Read(effGetParamLabel, index, nameRoom);
            reader.Read(effGetParamDisplay, index, displayRoom);
        }
        for (int device = 0; device <= 100; device += 7) {
            plugIn.effect->setParameter(plugIn.effect, paramDevice, static_cast<float>(device) / 100.0F);
            reader.Read(effGetParamDisplay, paramDevice, displayRoom);
        }
        reader.Read(effGetProgramName, 0, kVstMaxProgNameLen);
        reader.Read(effGetEffectName, 0, kVstMaxEffectNameLen);
        reader.Read(effGetVendorString, 0, kVstMaxVendorStrLen);
        reader.Read(effGetProductString, 0, kVstMaxProductStrLen);
    }
    SubstituteMidiOut(nullptr);
}

const Registered texts({"PAR-3", "writes texts that end, within the room that hosts have",
                        inRelease | inAddress, 640, 20, 20, TryTexts});

// --- PAR-4 ---

constexpr std::uint64_t lengths = 65537;  // 0 to 65,536 bytes; among them names without an end

// What the field keeps: 31 bytes, or as many of them as are whole characters.
std::string Kept(const std::string& name) {
    std::size_t length = std::min<std::size_t>(name.size(), kVstMaxProgNameLen - 1);
    if (length < name.size())
        while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0U) == 0x80U) --length;
    return name.substr(0, length);
}

void TryName(Trial& trial) {
    const bool ends = trial.number % 15 != 14;  // 0 to 65,536 bytes, in order
    const std::size_t size = ends             ? trial.number - trial.number / 15 + 1
                             : trial.OneIn(2) ? std::size_t{1} << 20
                                              : 32;
    static GuardedPages pages(std::size_t{1} << 20);
    char* const given = pages.Last(0) - size;
    for (std::size_t i = 0; i < size; ++i)
        given[i] = static_cast<char>(trial.OneIn(3) ? trial.Below(255) + 1 : 'a' + trial.Below(26));
    if (ends) given[size - 1] = '\0';

    static PlugIn plugIn;  // of the process: each name replaces the one before
    // The object around the field is the canary: nothing else of it may change.
    CORVAguivst& object = plugIn.Object();
    const auto* const begin = reinterpret_cast<const char*>(&object);
    const std::string before(begin, sizeof object);
    char now[kVstMaxProgNameLen] = {};
    plugIn.Call(effSetProgramName, 0, 0, given);
    plugIn.Call(effGetProgramName, 0, 0, now);
    trial.Require(now == Kept(std::string(given, strnlen(given, size))), "not the first 31 bytes");
    plugIn.Call(effSetProgramName, 0, 0, nullptr);
    char still[kVstMaxProgNameLen] = {};
    plugIn.Call(effGetProgramName, 0, 0, still);
    trial.Require(std::string(still) == now, "no name at all changed the name");

    const std::string after(begin, sizeof object);
    std::size_t first = sizeof object, last = 0;
    for (std::size_t i = 0; i < sizeof object; ++i)
        if (before[i] != after[i]) first = std::min(first, i), last = i;
    trial.Require(first > last || last - first < kVstMaxProgNameLen, "the object changed beside the name");
}

const Registered names({"PAR-4", "takes a program name of any length, and none", inRelease | inAddress,
                        lengths * 15 / 14 + 1, 1000, 20, TryName});

}  // namespace
