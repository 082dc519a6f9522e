#include "notes/notes.h"
#include "tests/notes/memory_stream.h"
#include "tests/support/test.h"

namespace {

// One note, one named layer, one bar. docs/score_format.md works a like one through.
// clang-format off
const Bytes example = {
    'T', 'N', 'o', 't', 'e', 's', 0, 0, 0, 1,      // signature, version 1
    0, 0, 0x56, 0x22, 0, 0, 0, 1,                  // at 10: rate 22050, one note
    0, 0, 0, 100, 0, 0, 0, 200,                    // at 18: begin, end
    69, 0xFF, 0xFF, 0xFD, 0x90, 5, 1, 2,           // at 26: A 440 or pitch 45, level -624, program, layer, channel
    0, 0, 0, 9, 0, 0, 0, 0x0C,                     // at 34: tag, included and auxiliary
    0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 'L',       // at 42: two names, "" and "L"
    0, 0, 0, 2, 'H', 'i',                          // at 55: title
    0x3C, 0, 0, 0, 0, 0, 0, 0, 0, 6, 4, 2, 0, 0,   // at 61: tempo 120, meter 4/4, no sharps, major
    0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 7, 0, 0, 0, 3};  // at 75: one bar, tick 7, 3 beats
// clang-format on

Bytes Changed(std::size_t at, const Bytes& bytes, Bytes file = example) {
    file.resize(std::max(file.size(), at + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(at));
    return file;
}

struct ReadScore {
    explicit ReadScore(const Bytes& bytes) {
        MemoryStream stream(Text(bytes));
        try {
            score->Read(stream);
        } catch (const std::exception& error) {
            failure = error.what();
        }
    }
    std::unique_ptr<TNotes> score = std::make_unique<TNotes>();
    std::string failure = "none";
};

template <typename Value>
Bytes PutInto(void (*put)(TBaseStream&, Value), Value value) {
    MemoryStream stream;
    put(stream, value);
    return {stream.bytes.begin(), stream.bytes.end()};
}

}  // namespace

TEST(StoredScore, AScoreOfOneNoteIsWrittenByteForByteAndReadAgainButForTheTag) {
    const auto score = std::make_unique<TNotes>();
    TNote& note = *score->AddNote(100, 200, 45, -624, 5, 1, 2);
    note.tag = 9;
    score->layers[1].name = "L";
    score->title = "Hi";
    score->AddBar(7, 3);
    EXPECT_EQ(Written(*score), example);
    ReadScore read(example);
    ASSERT_EQ(read.failure, "none");
    EXPECT_TRUE(read.score->notes.at(0)->Equals(note));
    EXPECT_EQ(read.score->notes[0]->tag, 0U);
    EXPECT_EQ(read.score->layers.at(1).name, "L");
    EXPECT_EQ(read.score->title, "Hi");
    MemoryStream older(Text(Changed(9, {0})));  // version 0 has no bars, and leaves those that are there
    read.score->Read(older);
    EXPECT_EQ(read.score->bars.size(), 1U);
}

TEST(StoredScore, EachFieldIsReadFromItsPlace) {
    // Excluded both ways, neither included nor auxiliary; tempo 60, 3/8, two flats, minor; bars 9, 5, 9.
    const Bytes changed = Changed(61, {0x3C, 0, 0, 0, 0, 0, 0, 0, 0, 5, 3, 3, 0xFE, 7}, Changed(41, {3}));
    const ReadScore read(
        Changed(82, {3, 0, 0, 0, 9, 0, 0, 0, 3, 0, 0, 0, 5, 0, 0, 0, 4, 0, 0, 0, 9, 0, 0, 0, 8}, changed));
    const TNotes& score = *read.score;
    EXPECT_EQ(score.notes.at(0)->flags, nfExcludedA | nfExcludedB);
    EXPECT_EQ(score.tempo, 60.0);
    EXPECT_EQ(score.meterNumerator * 10 + score.meterDenominatorLog2, 33);
    EXPECT_TRUE(score.keySharps == -2 && score.keyMinor);
    EXPECT_EQ(score.bars, (TBars{{5, {2, 4}}, {9, {1, 3}}}));  // numbered as in the file, none replaced
    EXPECT_EQ(ReadScore(Changed(10, {0, 0, 0xAC, 0x44})).score->notes.at(0)->Begin(), 50U);  // at 44100 Hz
}

TEST(StoredScore, DamageHasItsMessageAndNotesBeforeABreakAreKept) {
    const std::string unknown = "Unknown data format signature", invalid = "Invalid data format";
    for (const std::size_t at : {0U, 5U}) EXPECT_EQ(ReadScore(Changed(at, {'S'})).failure, unknown);
    EXPECT_EQ(ReadScore(Changed(9, {2})).failure, "Cannot read file: newer or incompatible file format.");
    EXPECT_EQ(ReadScore(Changed(10, {0, 0, 0, 0})).failure, invalid);
    EXPECT_EQ(ReadScore(Changed(14, {0x80})).failure, invalid);
    for (std::size_t length = 18; length < example.size(); ++length) {
        const ReadScore read(Bytes(example.begin(), example.begin() + static_cast<std::ptrdiff_t>(length)));
        EXPECT_EQ(read.failure, "Can't read byte from stream.");
        EXPECT_EQ(read.score->notes.size(), length < 18 + 24 ? 0U : 1U) << length << " bytes";
    }
}

TEST(StreamValues, NumbersHaveAMantissaAndAnExponent) {
    // 120 = 0.9375 * 2^7: mantissa 0.9375 * 2^62, exponent 6. 0 is mantissa 0, exponent -1.
    EXPECT_EQ(PutInto(PutDouble, 120.0), (Bytes{0x3C, 0, 0, 0, 0, 0, 0, 0, 0x00, 0x06}));
    EXPECT_EQ(PutInto(PutDouble, 0.0), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF}));
    // -0.5 = -0.5 * 2^0: mantissa -0.5 * 2^30, exponent -1.
    EXPECT_EQ(PutInto(PutFloat, -0.5F), (Bytes{0xE0, 0, 0, 0, 0xFF}));
    // 2^-149 = 0.5 * 2^-148, below the lowest exponent of -128: 0.5 * 2^(-149 + 158), exponent -128.
    EXPECT_EQ(PutInto(PutFloat, 0x1p-149F), (Bytes{0, 0, 1, 0, 0x80}));
    EXPECT_EQ(PutInto(PutFloat, std::nanf("")), PutInto(PutFloat, 0.0F));
}
