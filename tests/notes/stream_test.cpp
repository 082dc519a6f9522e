#include "notes/stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>

#include "tests/notes/memory_stream.h"
#include "tests/support/temp_folder.h"

namespace {

template <typename Value>
Bytes PutInto(void (*put)(TBaseStream&, Value), Value value) {
    MemoryStream stream;
    put(stream, value);
    return {stream.bytes.begin(), stream.bytes.end()};
}

}  // namespace

// A file through the stream of 512 bytes and one in memory: steps, reads and writes at random.
TEST(FileStream, AgreesWithBytesInMemory) {
    const TempFolder folder;
    WriteAll(folder / "f", "");
    constexpr auto both = std::ios_base::binary | std::ios_base::in | std::ios_base::out;
    TFStream stream(folder / "f", both, 0);  // raised to 512
    MemoryStream plain;
    std::minstd_rand random(1);
    for (int step = 0; step < 20000; ++step) {
        const std::int32_t size = plain.GetSize();
        const auto place = static_cast<std::int32_t>(random()) % (size + 1);
        const auto nearby = std::min(plain.GetPosition() + static_cast<std::int32_t>(random() % 9) - 4, size);
        const auto value = static_cast<std::uint8_t>(random());
        std::uint8_t byte = 0, expected = 0;
        switch (random() % 12) {
            case 0: stream.SetPosition(place), plain.SetPosition(place); break;
            case 1: ASSERT_EQ(stream.SeekToEnd(), plain.SeekToEnd()); break;
            case 2: stream.Rewind(), plain.Rewind(); break;
            case 3: stream.SetPosition(nearby), plain.SetPosition(nearby); break;
            case 4:
            case 5:
                ASSERT_EQ(stream.GetByte(byte), plain.GetByte(expected)) << "step " << step;
                ASSERT_EQ(byte, expected) << "step " << step;
                break;
            default: stream.PutByte(value), plain.PutByte(value);
        }
        ASSERT_EQ(stream.GetPosition(), plain.GetPosition());
    }
    ASSERT_TRUE(stream.Finish());
    EXPECT_EQ(stream.GetSize(), plain.GetSize());
    EXPECT_EQ(ReadAll(folder / "f"), plain.bytes);
}

TEST(StreamValues, GoMostSignificantByteFirst) {
    MemoryStream stream;
    PutU16(stream, 0x0102);
    PutU32(stream, 0x03040506);
    PutU64(stream, 0x0708090A0B0C0D0E);
    PutTag(stream, "AB");
    PutString(stream, "C");
    EXPECT_EQ(stream.bytes, Text({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 'A', 'B', 0, 0, 0, 1, 'C'}));
    stream.Rewind();
    EXPECT_EQ(GetU16(stream), 0x0102);
    EXPECT_EQ(GetU32(stream), 0x03040506U);
    EXPECT_EQ(GetU64(stream), 0x0708090A0B0C0D0EU);
    ExpectTag(stream, "AB");
    EXPECT_EQ(GetString(stream), "C");
    stream.Rewind();
    EXPECT_THROW(ExpectTag(stream, "AB"), std::runtime_error);
    // 120 = 0.9375 * 2^7: mantissa 0.9375 * 2^62, exponent 6. 0 is mantissa 0, exponent -1.
    EXPECT_EQ(PutInto(PutDouble, 120.0), (Bytes{0x3C, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x06}));
    EXPECT_EQ(PutInto(PutDouble, 0.0), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF}));
    // -0.5 = -0.5 * 2^0: mantissa -0.5 * 2^30, exponent -1.
    EXPECT_EQ(PutInto(PutFloat, -0.5F), (Bytes{0xE0, 0, 0, 0, 0xFF}));
    // 2^-149 = 0.5 * 2^-148, below the lowest exponent of -128: 0.5 * 2^(-149 + 158), exponent -128.
    EXPECT_EQ(PutInto(PutFloat, 0x1p-149F), (Bytes{0, 0, 1, 0, 0x80}));
    EXPECT_EQ(PutInto(PutFloat, std::nanf("")), PutInto(PutFloat, 0.0F));
}
