#include "parameters/parameters.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <sstream>

#include "base/truncate.h"
#include "devices/midi_device_list.h"
#include "harmony/vocabulary.h"

namespace {

constexpr float unitsPerDecibel = -0.025F;
constexpr double channelScale = 15.99;  // so that 1 is the last channel; in double precision
constexpr double pageScale = 3.99;      // of the displays, which know nothing of the window's values
constexpr float firstPage = 2;          // the window writes its pages from 2 upward

// German usage, as the names of the bars have always read: H is B natural.
const char* const barNames[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "B", "H"};

const char* const pageDisplays[] = {"Main frame", "Equa frame", "Options frame", "About frame"};
const char* const pageNames[] = {"Main", "Equalizer", "Options", "About"};

// --- displays ---

std::string WithDigits(double value, int digits) {
    char text[400];  // the largest number has 309 digits before the point
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string TwoDigits(float value) {
    return WithDigits(static_cast<double>(value), 2);
}
std::string InThirds(float value) {
    return value <= 1.0F / 3.0F ? "low" : value <= 2.0F / 3.0F ? "med" : "high";
}
std::string InDecibels(float value) {
    return std::to_string(TruncateToInt32(DecibelsOf(value))) + " dB";
}
std::string AsVelocity(float value) {
    return std::to_string(VelocityOf(value));
}
std::string TrueOrFalse(float value) {
    return IsOn(value) ? "true" : "false";
}
std::string AsInstrument(float value) {
    const std::int32_t program = ProgramOf(value);
    return program >= 0 && program < programCount ? InstrumentNames[program] : "";
}
// A device counts from 1 where there is one, its number from 0 where there is none.
std::string AsDevice(float value) {
    const std::uint32_t index = DeviceOf(value);
    if (index < MidiOutDeviceCount()) return "(" + std::to_string(index + 1) + ")" + MidiOutDeviceName(index);
    return "(" + std::to_string(static_cast<std::int32_t>(index)) + ") N/A";
}
std::string AsChannel(float value) {
    return std::to_string(TruncateToInt32(static_cast<double>(value) * channelScale + 1.0));
}
std::string AsPage(float value) {
    const std::int32_t page = TruncateToInt32(static_cast<double>(value) * pageScale);
    return page >= 0 && page < std::ssize(pageDisplays) ? pageDisplays[page] : "";
}
std::string InSeconds(float value) {
    return WithDigits(static_cast<double>(DelayOf(value)) * 0.001, 3) + " s";
}

// --- typed texts, read by the locale in force: leading blanks are skipped, trailing matter is ignored ---

template <typename Value>
bool ReadTyped(const char* text, Value& value) {
    std::istringstream typed{std::string(text)};
    typed >> value;
    return !typed.fail();
}

// Typed is the detector's relative threshold, not the parameter.
bool ReadThreshold(const char* text, float& value) {
    float threshold = 0;
    if (!ReadTyped(text, threshold) || !(threshold >= 0.0F && threshold <= 1.0F)) return false;
    value = 1.0F - threshold;
    return true;
}
bool ReadDecibels(const char* text, float& value) {
    float decibels = 0;
    if (!ReadTyped(text, decibels) || !(decibels >= -40.0F && decibels <= 0.0F)) return false;
    value = decibels * unitsPerDecibel;
    return true;
}
bool ReadVelocity(const char* text, float& value) {
    int typed = 0;
    if (!ReadTyped(text, typed)) return false;
    const auto velocity = static_cast<std::int8_t>(static_cast<std::uint8_t>(typed));
    if (velocity <= 0) return false;
    value = static_cast<float>(velocity) / 127.0F + 0.007F;  // so that truncation gives it back
    return true;
}

// --- points ---

template <typename Value, typename Label>
std::vector<ParameterPoint> Points(std::int32_t count, Value value, Label label) {
    std::vector<ParameterPoint> points(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) points[static_cast<std::size_t>(i)] = {value(i), label(i)};
    return points;
}
std::vector<ParameterPoint> Instruments() {
    const auto value = [](std::int32_t i) { return static_cast<float>(i) / (programCount - 1); };
    return Points(programCount, value, [](std::int32_t i) { return InstrumentNames[i]; });
}
std::vector<ParameterPoint> Channels() {
    const auto value = [](std::int32_t i) { return ChannelValue(static_cast<float>(i)); };
    return Points(channelCount, value, [](std::int32_t i) { return std::to_string(i + 1); });
}
std::vector<ParameterPoint> Pages() {
    return Points(std::ssize(pageNames), PageValue, [](std::int32_t i) { return pageNames[i]; });
}

using enum ParameterKind;

// clang-format off
const ParameterRow rows[] = {
    {paramPolyphony,         slider, 0.87F,  "polyphony",              "Polyphony",              nullptr,         InThirds,     ReadThreshold, nullptr},
    {paramSensitivity,       slider, 0.875F, "sensitivity",            "Sensitivity",            nullptr,         InDecibels,   ReadDecibels,  nullptr},
    {paramVelocity,          slider, 0.79F,  "velocity",               "Velocity",               "MIDI Velocity", AsVelocity,   ReadVelocity,  nullptr},
    {paramFirstBar,          bar,    1.0F,   "equalizer_bar_",         "Equalizer bar ",         nullptr,         TwoDigits,    nullptr,       nullptr},
    {paramInstrument,        choice, 0.0F,   "midi_instrument",        "MIDI Instrument",        nullptr,         AsInstrument, nullptr,       Instruments},
    {paramDevice,            slider, 0.0F,   "midi_out_device",        "MIDI Out Device",        nullptr,         AsDevice,     nullptr,       nullptr},
    {paramDeviceEnabled,     toggle, 0.0F,   "midi_out_enabled",       "MIDI Out Enabled",       nullptr,         TrueOrFalse,  nullptr,       nullptr},
    {paramChannel,           choice, 0.0F,   "midi_channel",           "MIDI Channel",           nullptr,         AsChannel,    nullptr,       Channels},
    {paramOutputToHost,      toggle, 1.0F,   "output_to_host_enabled", "Output to Host Enabled", nullptr,         TwoDigits,    nullptr,       nullptr},
    {paramActivePage,        page,   0.0F,   "active_page",            "Active Page",            nullptr,         AsPage,       nullptr,       Pages},
    {paramChordsEnabled,     toggle, 0.0F,   "chords_enabled",         "Chords Enabled",         nullptr,         TrueOrFalse,  nullptr,       nullptr},
    {paramChordsDelay,       slider, 0.0F,   "chords_delay",           "Chords Delay",           nullptr,         InSeconds,    nullptr,       nullptr},
    {paramSendProgramChange, toggle, 0.0F,   "send_program_change",    "Send Program Change",    nullptr,         TrueOrFalse,  nullptr,       nullptr},
};
// clang-format on

// The octave is one above that of the band's note, and stays so for the sake of saved automation.
std::string NoteOfBar(std::int32_t index) {
    return std::string(barNames[(index - paramFirstBar) % 12]) + " " + std::to_string((index + 21) / 12);
}

}  // namespace

const ParameterRow* FindParameter(std::int32_t index) {
    if (index > paramFirstBar && index <= paramLastBar) index = paramFirstBar;
    const auto* const found = std::find_if(std::begin(rows), std::end(rows),
                                           [&](const ParameterRow& row) { return row.index == index; });
    return found != std::end(rows) ? found : nullptr;
}

std::string ParameterName(std::int32_t index) {
    const ParameterRow* const row = FindParameter(index);
    if (row == nullptr) return "No name";
    return row->kind == bar ? row->name + NoteOfBar(index) : row->name;
}

std::string ParameterLabel(std::int32_t index) {
    const ParameterRow* const row = FindParameter(index);
    return row != nullptr && row->label != nullptr ? row->label : ParameterName(index);
}

std::string ParameterSymbol(std::int32_t index) {
    const ParameterRow* const row = FindParameter(index);
    if (row == nullptr) return "";
    return row->kind == bar ? row->symbol + std::to_string(index - paramFirstBar + 1) : row->symbol;
}

std::string ParameterDisplay(std::int32_t index, float value) {
    const ParameterRow* const row = FindParameter(index);
    return row != nullptr ? row->display(value) : TwoDigits(value);
}

bool ReadParameter(std::int32_t index, const char* text, float& value) {
    const ParameterRow* const row = FindParameter(index);
    return row != nullptr && row->read != nullptr && text != nullptr && row->read(text, value);
}

float ParameterInitialValue(std::int32_t index) {
    const ParameterRow* const row = FindParameter(index);
    return row != nullptr ? row->initial : 0.0F;
}

float ParameterMaximum(std::int32_t index) {
    return index == paramActivePage ? PageValue(std::ssize(pageNames) - 1) : 1.0F;
}

float DecibelsOf(float value) {
    return value * -40.0F;
}
std::int8_t VelocityOf(float value) {
    return static_cast<std::int8_t>(static_cast<std::uint8_t>(TruncateToInt32(value * 127.0F)));
}
std::int32_t ProgramOf(float value) {
    return TruncateToInt32(value * 127.0F);
}
std::uint32_t DeviceOf(float value) {
    return static_cast<std::uint32_t>(TruncateToInt32(DevicePosition(value)));
}
std::int32_t ChannelOf(float value) {
    return TruncateToInt32(static_cast<double>(value) * channelScale);
}
std::int32_t PageOf(float value) {
    return TruncateToInt32(value - firstPage);
}
float DelayOf(float value) {
    return value * 2000.0F;
}

float DevicePosition(float value) {
    return value * 100.0F;
}
float ChannelPosition(float value) {
    return value * (channelCount - 1);
}
float DeviceValue(float position) {
    return static_cast<float>(position * 0.01);  // in double precision, or 0.05 is device 4
}
float ChannelValue(float position) {
    return position / (channelCount - 1);
}
float PageValue(std::int32_t page) {
    return firstPage + static_cast<float>(page);
}
