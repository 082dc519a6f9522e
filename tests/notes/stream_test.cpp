#include "notes/stream.h"

#include <gtest/gtest.h>

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
#include "tests/notes/temporary_file.h"

namespace {

constexpr std::int32_t lastPosition = std::numeric_limits<std::int32_t>::max();
constexpr auto reading = std::ios_base::binary | std::ios_base::in;
constexpr auto writing = std::ios_base::binary | std::ios_base::out;
constexpr auto both = reading | writing | std::ios_base::trunc;

// The same random step on a file and on its model; what they answer must agree.
void StepBoth(TFStream& file, MemoryStream& model, std::minstd_rand& random) {
    const auto place = static_cast<std::int32_t>(random() % 3000);
    switch (random() % 16) {
        case 0:
            file.SetPosition(place);
            model.SetPosition(place);
            break;
        case 1: EXPECT_EQ(file.SeekToEnd(), model.SeekToEnd()); break;
        case 2:
            file.Rewind();
            model.Rewind();
            break;
        case 3:
            file.Flush();
            EXPECT_EQ(file.GetSize(), model.GetSize());
            break;
        case 4: file.SetPosition(-1); break;  // refused
        default:
            const bool puts = random() % 2 == 0;
            for (std::uint32_t count = static_cast<std::uint32_t>(random() % 300); count > 0; --count) {
                std::uint8_t a = static_cast<std::uint8_t>(random()), b = a;
                if (puts) {
                    file.PutByte(a);
                    model.PutByte(b);
                } else {
                    EXPECT_EQ(file.GetByte(a), model.GetByte(b));
                    EXPECT_EQ(a, b);
                }
            }
    }
    EXPECT_EQ(file.GetPosition(), model.GetPosition());
}

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

TEST(FileStream, RandomStepsAgreeWithAPlainVectorOfBytes) {
    for (const std::int32_t size : {0, 511, 512, 513, 65536}) {
        const TemporaryFile path;
        MemoryStream model;
        std::minstd_rand random(static_cast<unsigned>(size + 1));
        {
            TFStream file(path.name, both, size);
            for (int step = 0; step < 4000 && !testing::Test::HasFailure(); ++step)
                StepBoth(file, model, random);
            EXPECT_FALSE(file.Failed());
        }
        EXPECT_EQ(path.Content(), model.data) << "buffer of " << size;
    }
}

// Once read, the bytes of the span are the stream's own: the file may be gone.
TEST(FileStream, AStepWithinTheSpanDoesNotTouchTheFile) {
    const TemporaryFile path(Bytes(512, 7));
    TFStream stream(path.name, reading, 0);  // raised to 512
    std::uint8_t byte = 0;
    EXPECT_TRUE(stream.GetByte(byte));
    EXPECT_FALSE(stream.IsAtEnd());
    stream.file.close();
    stream.SetPosition(511);
    EXPECT_TRUE(stream.GetByte(byte));
    EXPECT_EQ(byte, 7);
    EXPECT_FALSE(stream.GetByte(byte)) << "byte 512 would have to come from the file";
}

TEST(FileStream, TheEndIsNoFailure) {
    const TemporaryFile path(Bytes{1, 2});
    TFStream stream(path.name, reading, 65536);
    std::uint8_t byte = 0;
    EXPECT_TRUE(stream.GetByte(byte) && stream.GetByte(byte));
    EXPECT_FALSE(stream.GetByte(byte));
    EXPECT_TRUE(stream.IsAtEnd());
    EXPECT_FALSE(stream.Failed());
    stream.Rewind();
    EXPECT_FALSE(stream.IsAtEnd());
    EXPECT_EQ(stream.GetSize(), 2);
}

TEST(FileStream, SizeIsTheFilesAndDoesNotCountWhatIsHeld) {
    const TemporaryFile path;
    TFStream stream(path.name, writing, 65536);
    PutU32(stream, 1);
    EXPECT_EQ(stream.GetSize(), 0);
    EXPECT_EQ(stream.SeekToEnd(), 4);
    EXPECT_EQ(stream.GetSize(), 4);
}

TEST(FileStream, StepsPastTwoGigabytesAreRefused) {
    const TemporaryFile path;
    TFStream stream(path.name, both, 65536);
    stream.SetPosition(lastPosition - 2);
    PutU16(stream, 0x1234);
    EXPECT_FALSE(stream.Failed());
    EXPECT_EQ(stream.GetPosition(), lastPosition);
    std::uint8_t byte = 0;
    EXPECT_FALSE(stream.GetByte(byte));
    stream.PutByte(0);
    EXPECT_TRUE(stream.Failed());
    EXPECT_EQ(stream.GetPosition(), lastPosition);
    std::filesystem::resize_file(path.name, std::uintmax_t{3} << 30);  // sparse: no room is taken
    TFStream large(path.name, reading, 65536);
    EXPECT_EQ(large.GetSize(), lastPosition);
    large.SetPosition(lastPosition - 1);
    EXPECT_TRUE(large.GetByte(byte));
    EXPECT_FALSE(large.GetByte(byte));
    EXPECT_EQ(large.SeekToEnd(), lastPosition) << "stays where it is";
    EXPECT_TRUE(large.Failed());
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
}

TEST(StreamValues, FiniteNumbersComeBackExactly) {
    for (const double value : {120.0, -0.1, 0.0, 0x1p-1074, std::numeric_limits<double>::max()})
        EXPECT_EQ(ThereAndBack(value), value);
    std::mt19937_64 random(1);
    for (int round = 0; round < 200000; ++round) {
        const double value = std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())),
                                        static_cast<int>(random() % 2000) - 1060);
        const float single =
            static_cast<float>(std::ldexp(static_cast<double>(random() >> 40), -170 + round % 270));
        ASSERT_EQ(ThereAndBack(value), value);
        ASSERT_EQ(ThereAndBack(single), single);
    }
}

TEST(StreamValues, WhatIsNotFiniteHasADefinedForm) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(ThereAndBack(-infinity), -infinity);
    EXPECT_EQ(ThereAndBack(std::nan("")), 0.0);
    EXPECT_EQ(ThereAndBack(std::numeric_limits<float>::infinity()), std::numeric_limits<float>::infinity());
    EXPECT_EQ(ThereAndBack(std::nanf("")), 0.0F);
}

// Every exponent with hostile mantissas: values far outside the format become infinities or zeros.
TEST(StreamValues, AnyBytesReadAsSomeNumber) {
    for (const std::uint64_t mantissa : {std::uint64_t{1}, std::uint64_t{1} << 63, ~std::uint64_t{0} >> 1})
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

// 16 MiB of text under budgets just too small and large enough; a length that lies costs nothing.
TEST(StreamValues, TextsTakeMemoryAsTheyArriveAndWithinTheBudget) {
    MemoryStream liar(Bytes{0xFF, 0xFF, 0xFF, 0xFF, 'x'});
    MemoryStream honest;
    PutString(honest, std::string(std::size_t{16} << 20, 'x'));
    honest.Rewind();
    {
        const MemoryBudget budget(8192);
        EXPECT_EQ(FailureOf([&] { GetString(liar); }), "Can't read byte from stream.");
    }
    {
        const MemoryBudget budget(std::size_t{15} << 20);
        EXPECT_THROW(GetString(honest), std::bad_alloc);
    }
    honest.Rewind();
    const MemoryBudget budget(std::size_t{48} << 20);
    EXPECT_EQ(GetString(honest).size(), std::size_t{16} << 20);
}

TEST(SharedPointer, TheLastOneDeletesTheObject) {
    struct Mourned : TSerial {
        explicit Mourned(int& counter) : deaths(counter) {}
        ~Mourned() override { ++deaths; }
        void Read(TBaseStream&) override {}
        void Write(TBaseStream&) const override {}
        int& deaths;
    };
    int deaths = 0;
    TPtr<TSerial> first(new Mourned(deaths)), none;
    {
        TPtr<TSerial> second(first);
        EXPECT_EQ(*first.count, 2U);
        second = second;
        none = second;
    }
    first = TPtr<TSerial>();
    EXPECT_EQ(deaths, 0);
    none = TPtr<TSerial>();
    EXPECT_EQ(deaths, 1);
}
