#include "notes/stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>

#include "notes/note_memory.h"
#include "notes/stream_values.h"
#include "tests/notes/memory_stream.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr std::int32_t lastPosition = std::numeric_limits<std::int32_t>::max();
constexpr auto reading = std::ios_base::binary | std::ios_base::in;
constexpr auto writing = std::ios_base::binary | std::ios_base::out;

template <typename Value>
Bytes PutInto(void (*put)(TBaseStream&, Value), Value value) {
    MemoryStream stream;
    put(stream, value);
    return stream.data;
}

double ThereAndBack(double value) {
    MemoryStream stream(PutInto(PutDouble, value));
    return GetDouble(stream);
}

float ThereAndBack(float value) {
    MemoryStream stream(PutInto(PutFloat, value));
    return GetFloat(stream);
}

std::string FailureOf(const std::function<void()>& step) {
    try {
        step();
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
    return "none";
}

}  // namespace

// Once read, the bytes of the span are the stream's own: the file may be gone.
TEST(FileStream, AStepWithinTheSpanDoesNotTouchTheFile) {
    const TempFolder folder;
    WriteAll(folder / "f", std::string(512, '\7'));
    TFStream stream(folder / "f", reading, 0);  // raised to 512
    std::uint8_t byte = 0;
    EXPECT_TRUE(stream.GetByte(byte));
    EXPECT_FALSE(stream.IsAtEnd());
    stream.file.close();
    stream.SetPosition(511);
    EXPECT_TRUE(stream.GetByte(byte));
    EXPECT_EQ(byte, 7);
    EXPECT_FALSE(stream.GetByte(byte)) << "byte 512 would have to come from the file";
}

// A file through the stream of 512 bytes and a plain vector: steps, reads and writes at random.
TEST(FileStream, AgreesWithAVectorOfBytes) {
    const TempFolder folder;
    WriteAll(folder / "f", "");
    TFStream stream(folder / "f", reading | writing, 0);
    MemoryStream plain;
    std::minstd_rand random(1);
    for (int step = 0; step < 20000; ++step) {
        const auto size = static_cast<std::int32_t>(plain.data.size());
        const auto place = static_cast<std::int32_t>(random() % (plain.data.size() + 1));
        const auto near =
            std::clamp(plain.GetPosition() + static_cast<std::int32_t>(random() % 9) - 4, 0, size);
        const auto value = static_cast<std::uint8_t>(random());
        std::uint8_t byte = 0, expected = 0;
        switch (random() % 12) {
            case 0: stream.SetPosition(place), plain.SetPosition(place); break;
            case 1: ASSERT_EQ(stream.SeekToEnd(), plain.SeekToEnd()); break;
            case 2: stream.Rewind(), plain.Rewind(); break;
            case 3: stream.SetPosition(near), plain.SetPosition(near); break;
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
    const std::string content = ReadAll(folder / "f");
    EXPECT_EQ(Bytes(content.begin(), content.end()), plain.data);
}

TEST(FileStream, AFilePastTwoGigabytesEndsThere) {
    const TempFolder folder;
    WriteAll(folder / "f", "");
    std::filesystem::resize_file(folder / "f", std::uintmax_t{3} << 30);  // sparse: no room is taken
    TFStream stream(folder / "f", reading, 65536);
    EXPECT_EQ(stream.GetSize(), lastPosition);
    stream.SetPosition(lastPosition - 1);
    std::uint8_t byte = 0;
    EXPECT_TRUE(stream.GetByte(byte));
    EXPECT_FALSE(stream.GetByte(byte));
    EXPECT_EQ(stream.SeekToEnd(), lastPosition) << "stays where it is";
    EXPECT_TRUE(stream.Failed());
}

TEST(StreamValues, WholeNumbersAndTextsGoMostSignificantByteFirst) {
    MemoryStream stream;
    PutU16(stream, 0x0102);
    PutU32(stream, 0x03040506);
    PutU64(stream, 0x0708090A0B0C0D0E);
    PutTag(stream, "AB");
    PutString(stream, "C");
    EXPECT_EQ(stream.data, (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 'A', 'B', 0, 0, 0, 1, 'C'}));
    stream.Rewind();
    EXPECT_EQ(GetU16(stream), 0x0102);
    EXPECT_EQ(GetU32(stream), 0x03040506U);
    EXPECT_EQ(GetU64(stream), 0x0708090A0B0C0D0EU);
    ExpectTag(stream, "AB");
    EXPECT_EQ(GetString(stream), "C");
}

TEST(StreamValues, HeadersAreChecked) {
    MemoryStream stream(Bytes{'A', 'x', 0, 0, 0, 2, 0});
    ExpectTag(stream, "");
    EXPECT_EQ(FailureOf([&] { ExpectTag(stream, "AB"); }), "Unknown data format signature");
    EXPECT_EQ(ExpectVersion(stream, 2), 2U);
    stream.SetPosition(2);
    EXPECT_EQ(FailureOf([&] { ExpectVersion(stream, 1); }), "Unknown data format version");
    EXPECT_FALSE(GetBool(stream));
    EXPECT_EQ(FailureOf([&] { GetBool(stream); }), "Can't read byte from stream.");
}

TEST(StreamValues, FloatingPointFormsAreSpeltOut) {
    // 120 = 0.9375 * 2^7: mantissa 0.9375 * 2^62, exponent 6. 0 is mantissa 0, exponent -1.
    EXPECT_EQ(PutInto(PutDouble, 120.0), (Bytes{0x3C, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x06}));
    EXPECT_EQ(PutInto(PutDouble, 0.0), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF}));
    // -0.5 = -0.5 * 2^0: mantissa -0.5 * 2^30, exponent -1.
    EXPECT_EQ(PutInto(PutFloat, -0.5F), (Bytes{0xE0, 0, 0, 0, 0xFF}));
    // 2^-149 = 0.5 * 2^-148, below the lowest exponent of -128: 0.5 * 2^(-149 + 158), exponent -128.
    EXPECT_EQ(PutInto(PutFloat, 0x1p-149F), (Bytes{0, 0, 1, 0, 0x80}));
    EXPECT_EQ(PutInto(PutFloat, std::nanf("")), PutInto(PutFloat, 0.0F));
}

// Every exponent with hostile mantissas: values far outside the format become infinities or zeros.
TEST(StreamValues, AnyBytesReadAsSomeNumber) {
    for (const std::uint64_t mantissa : {std::uint64_t{1}, std::uint64_t{1} << 63, ~std::uint64_t{0} >> 1,
                                         std::uint64_t{0x5678'9ABC'DEF0'1234}})
        for (std::uint32_t exponent = 0; exponent < 65536; ++exponent) {
            MemoryStream stream;
            PutU64(stream, mantissa);
            PutU16(stream, static_cast<std::uint16_t>(exponent));
            stream.Rewind();
            const double value = GetDouble(stream);
            ASSERT_EQ(ThereAndBack(value), value);
            stream.SetPosition(4);  // the same bytes as a float
            const float single = GetFloat(stream);
            ASSERT_EQ(ThereAndBack(single), single);
        }
}

// 16 MiB of text under budgets just too small and large enough.
TEST(StreamValues, TextsTakeMemoryWithinTheBudget) {
    MemoryStream stream;
    PutString(stream, std::string(std::size_t{16} << 20, 'x'));
    stream.Rewind();
    {
        const MemoryBudget budget(std::size_t{15} << 20);
        EXPECT_THROW(GetString(stream), std::bad_alloc);
    }
    stream.Rewind();
    const MemoryBudget budget(std::size_t{48} << 20);
    EXPECT_EQ(GetString(stream).size(), std::size_t{16} << 20);
}

TEST(SharedPointer, TheLastOneDeletesTheObject) {
    struct Counted {
        int& deaths;
        ~Counted() { ++deaths; }
    };
    int deaths = 0;
    TPtr<Counted> first(new Counted{deaths}), other(first);
    EXPECT_EQ(*first.count, 2U);
    other = TPtr<Counted>(other);
    first = TPtr<Counted>();
    EXPECT_EQ(deaths, 0);
    other = TPtr<Counted>();
    EXPECT_EQ(deaths, 1);
}
