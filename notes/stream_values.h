#pragma once
#include <cstdint>
#include <string>
#include <string_view>

class TBaseStream;

// Values on a stream, most significant byte first, in a form that no machine's own format shows through.
// Threads: those of the stream.

void PutU8(TBaseStream& stream, std::uint8_t value);
void PutU16(TBaseStream& stream, std::uint16_t value);
void PutU32(TBaseStream& stream, std::uint32_t value);
void PutU64(TBaseStream& stream, std::uint64_t value);
void PutTag(TBaseStream& stream, std::string_view text);     // the bytes alone
void PutString(TBaseStream& stream, std::string_view text);  // the length as U32, then the bytes

// A mantissa, then an exponent: 32 + 8 bits for a float, 64 + 16 bits for a double; finite values come back
// as they were (a float below 2^-128 loses the bits that do not fit). An infinity is written as a power of
// two that reads back as one; what is not a number is written as zero.
void PutFloat(TBaseStream& stream, float value);
void PutDouble(TBaseStream& stream, double value);

// Each throws std::runtime_error("Can't read byte from stream.") when a byte is missing.
std::uint8_t GetU8(TBaseStream& stream);
std::uint16_t GetU16(TBaseStream& stream);
std::uint32_t GetU32(TBaseStream& stream);
std::uint64_t GetU64(TBaseStream& stream);
bool GetBool(TBaseStream& stream);  // one byte; anything but zero is true
// Grows as the bytes arrive, whatever length is stored, within the thread's MemoryBudget.
std::string GetString(TBaseStream& stream);
float GetFloat(TBaseStream& stream);
double GetDouble(TBaseStream& stream);

// Throws std::runtime_error("Unknown data format signature") at the first byte that differs.
void ExpectTag(TBaseStream& stream, std::string_view text);
// A U32; throws std::runtime_error("Unknown data format version") above `highest`.
std::uint32_t ExpectVersion(TBaseStream& stream, std::uint32_t highest);
