#include "notes/stream_values.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "notes/note_memory.h"
#include "notes/stream.h"

namespace {

template <typename Value>
void PutBytes(TBaseStream& stream, Value value) {
    for (int shift = 8 * (int{sizeof(Value)} - 1); shift >= 0; shift -= 8)
        stream.PutByte(static_cast<std::uint8_t>(value >> shift));
}

template <typename Value>
Value GetBytes(TBaseStream& stream) {
    Value value = 0;
    for (std::size_t byte = 0; byte < sizeof(Value); ++byte)
        value = static_cast<Value>(value << 8 | GetU8(stream));
    return value;
}

// The smallest value that rounds to infinity in single precision: half a unit past the largest float.
constexpr double floatOverflow = 0x1.ffffffp127;

constexpr std::size_t firstPiece = 4096;  // bytes that a long string takes to begin with

// Makes space for more text, at most twice what there is, and charges the budget for both while they stand
// side by side. The charge is for what reserve takes: a string grows to twice its capacity at least.
void GrowString(std::string& text, std::size_t missing) {
    const std::size_t held = text.capacity();
    const std::size_t larger = std::max(2 * held, std::min(text.size() + missing, firstPiece));
    MemoryBudget::Charge(MemoryBudget::BlockSize(larger + 1));
    text.reserve(larger);
    if (held > std::string().capacity()) MemoryBudget::Release(MemoryBudget::BlockSize(held + 1));
}

}  // namespace

void PutU8(TBaseStream& stream, std::uint8_t value) {
    stream.PutByte(value);
}
void PutU16(TBaseStream& stream, std::uint16_t value) {
    PutBytes(stream, value);
}
void PutU32(TBaseStream& stream, std::uint32_t value) {
    PutBytes(stream, value);
}
void PutU64(TBaseStream& stream, std::uint64_t value) {
    PutBytes(stream, value);
}

void PutTag(TBaseStream& stream, std::string_view text) {
    for (const char character : text) stream.PutByte(static_cast<std::uint8_t>(character));
}

void PutString(TBaseStream& stream, std::string_view text) {
    PutU32(stream, static_cast<std::uint32_t>(text.size()));
    PutTag(stream, text);
}

// value = fraction * 2^(exponent + 1), the fraction from 0.5 up to, but not including, 1. No fraction
// reaches 1, so a mantissa of 2^30 with the highest exponent is free to mean infinity.
void PutFloat(TBaseStream& stream, float value) {
    if (std::isnan(value)) value = 0.0F;
    int exponent = 0;
    float fraction = 1.0F;
    if (std::isinf(value)) {
        fraction = std::copysign(fraction, value);
        exponent = 127;
    } else {
        fraction = std::frexp(value, &exponent);
        --exponent;
    }
    const int scale = exponent >= -128 ? 30 : exponent + 158;
    PutU32(stream, static_cast<std::uint32_t>(static_cast<std::int32_t>(std::ldexp(fraction, scale))));
    PutU8(stream, exponent >= -128 ? static_cast<std::uint8_t>(exponent) : 0x80);
}

// As above. 2^61 with the highest exponent is 2^32767, which only an infinity reads back from.
void PutDouble(TBaseStream& stream, double value) {
    if (std::isnan(value)) value = 0.0;
    int exponent = 0;
    double fraction = 0.5;
    if (std::isinf(value)) {
        fraction = std::copysign(fraction, value);
        exponent = std::numeric_limits<std::int16_t>::max();
    } else {
        fraction = std::frexp(value, &exponent);
        --exponent;
    }
    const int scale = exponent >= -32705 ? 62 : exponent + 32767;
    PutU64(stream, static_cast<std::uint64_t>(static_cast<std::int64_t>(std::ldexp(fraction, scale))));
    PutU16(stream, exponent >= -32705 ? static_cast<std::uint16_t>(exponent) : std::uint16_t{0x803F});
}

std::uint8_t GetU8(TBaseStream& stream) {
    std::uint8_t byte = 0;
    if (!stream.GetByte(byte)) throw std::runtime_error("Can't read byte from stream.");
    return byte;
}

std::uint16_t GetU16(TBaseStream& stream) {
    return GetBytes<std::uint16_t>(stream);
}
std::uint32_t GetU32(TBaseStream& stream) {
    return GetBytes<std::uint32_t>(stream);
}
std::uint64_t GetU64(TBaseStream& stream) {
    return GetBytes<std::uint64_t>(stream);
}
bool GetBool(TBaseStream& stream) {
    return GetU8(stream) != 0;
}

std::string GetString(TBaseStream& stream) {
    std::string text;
    for (std::size_t missing = GetU32(stream); missing > 0; --missing) {
        if (text.size() == text.capacity()) GrowString(text, missing);
        text.push_back(static_cast<char>(GetU8(stream)));
    }
    return text;
}

float GetFloat(TBaseStream& stream) {
    const std::int32_t mantissa = static_cast<std::int32_t>(GetU32(stream));
    const int exponent = (GetU8(stream) ^ 0x80) - 0x80;  // two's complement, extended
    const double value = std::ldexp(static_cast<double>(mantissa), exponent - 29);
    if (std::fabs(value) >= floatOverflow)
        return std::copysign(std::numeric_limits<float>::infinity(), mantissa < 0 ? -1.0F : 1.0F);
    return static_cast<float>(value);
}

double GetDouble(TBaseStream& stream) {
    const std::int64_t mantissa = static_cast<std::int64_t>(GetU64(stream));
    const int exponent = static_cast<std::int16_t>(GetU16(stream));
    return std::ldexp(static_cast<double>(mantissa), exponent - 61);
}

void ExpectTag(TBaseStream& stream, std::string_view text) {
    for (const char character : text)
        if (GetU8(stream) != static_cast<std::uint8_t>(character))
            throw std::runtime_error("Unknown data format signature");
}

std::uint32_t ExpectVersion(TBaseStream& stream, std::uint32_t highest) {
    const std::uint32_t version = GetU32(stream);
    if (version > highest) throw std::runtime_error("Unknown data format version");
    return version;
}
