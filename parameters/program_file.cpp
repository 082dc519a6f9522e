#include "parameters/program_file.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace {

constexpr std::size_t nameBytes = 28;
constexpr std::string_view magic = "CcnK", kind = "FxCk", identity = "ORV1";
constexpr std::size_t identityAt = 16, countAt = 24, valuesAt = 28 + nameBytes;
constexpr std::size_t fileBytes = valuesAt + std::size_t{4} * parameterCount;

std::string Word(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFFU);
    return bytes;
}

std::uint32_t WordAt(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

}  // namespace

std::string ProgramFile(const std::string& name, const std::vector<ParameterSetting>& settings) {
    float values[parameterCount];
    for (std::int32_t i = 0; i < parameterCount; ++i) values[i] = ParameterInitialValue(i);
    for (const auto& [index, value] : settings) values[index] = value;

    std::string field = name.substr(0, nameBytes - 1);
    field.resize(nameBytes);
    std::string bytes(magic);
    bytes += Word(fileBytes - 8) + std::string(kind) + Word(1) + std::string(identity) + Word(1) +
             Word(parameterCount) + field;
    for (const float value : values) bytes += Word(std::bit_cast<std::uint32_t>(value));
    return bytes;
}

std::vector<ParameterSetting> ReadProgramFile(const std::string& bytes) {
    const auto holds = [&bytes](std::size_t at, std::string_view text) {
        return bytes.compare(at, text.size(), text) == 0;
    };
    if (bytes.size() != fileBytes || !holds(0, magic) || !holds(8, kind) || !holds(identityAt, identity) ||
        WordAt(bytes, countAt) != parameterCount)
        throw std::invalid_argument("not a preset of this plug-in");
    std::vector<ParameterSetting> settings;
    for (std::int32_t i = 0; i < parameterCount; ++i) {
        const auto value = std::bit_cast<float>(WordAt(bytes, valuesAt + 4 * static_cast<std::size_t>(i)));
        if (!(value >= 0 && value <= ParameterMaximum(i)))
            throw std::invalid_argument("its value of " + ParameterName(i) + " is out of range");
        settings.push_back({i, value});
    }
    return settings;
}
