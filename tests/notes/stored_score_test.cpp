#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <tuple>

#include "notes/notes.h"
#include "tests/notes/memory_stream.h"
#include "tests/support/temp_folder.h"

namespace {

// The smallest useful file: one note, no layer, an empty title. docs/score_format.md works a like one
// through.
struct StoredScore {
    Bytes head{'T', 'N', 'o', 't', 'e', 's', 0, 0, 0, 1};  // signature, version 1
    Bytes rate{0, 0, 0x56, 0x22};                          // 22050
    Bytes count{0, 0, 0, 1};                               //
    Bytes note{0,    0,    0,    100,                      // begin
               0,    0,    0,    200,                      // end
               69,                                         // A 440, pitch 45
               0xFF, 0xFF, 0xFD, 0x90,                     // level -624
               5,    1,    2,                              // program, layer, channel
               0,    0,    0,    9,                        // tag
               0,    0,    0,    0x0C};                    // included and auxiliary
    Bytes layers{0, 0, 0, 0};
    Bytes title{0, 0, 0, 0};
    Bytes tail{0x3C, 0, 0, 0, 0, 0, 0, 0, 0, 6, 4, 2, 0, 0};  // tempo 120, meter 4/4, no sharps, major
    Bytes bars{0, 0, 0, 0, 0, 0, 0, 0};

    Bytes All() const {
        Bytes all;
        for (const Bytes* part : {&head, &rate, &count, &note, &layers, &title, &tail, &bars})
            all.insert(all.end(), part->begin(), part->end());
        return all;
    }
};

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

}  // namespace

TEST(StoredScore, AScoreOfOneNoteIsWrittenByteForByte) {
    const auto score = std::make_unique<TNotes>();
    score->AddNote(100, 200, 45, -624, 5, 1, 2)->tag = 9;
    StoredScore stored;
    stored.layers = {0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 1, 'L'};  // two names, "" and "L"
    stored.title = {0, 0, 0, 2, 'H', 'i'};
    stored.bars = {0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 7, 0, 0, 0, 3};  // one bar, tick 7, 3 beats
    score->layers[1].name = "L";
    score->title = "Hi";
    score->AddBar(7, 3);
    EXPECT_EQ(Written(*score), stored.All());
}

TEST(StoredScore, ReadingGivesWhatWasStoredButForTheTag) {
    StoredScore stored;
    stored.note[23] = 0x03;  // excluded both ways, neither included nor auxiliary
    stored.tail = {0x3C, 0, 0, 0, 0, 0, 0, 0, 0, 5, 3, 3, 0xFE, 7};  // tempo 60, 3/8, two flats, minor
    stored.bars = {0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 9, 0, 0, 0, 3,
                   0, 0, 0, 5, 0, 0, 0, 4, 0, 0, 0, 9, 0, 0, 0, 8};
    const ReadScore read(stored.All());
    ASSERT_EQ(read.failure, "none");
    TSimpleNote expected;
    expected.Init(100, 200, 45, -624, 5, 1, 2);
    expected.flags = nfExcludedA | nfExcludedB;
    EXPECT_TRUE(read.score->notes.at(0)->Equals(expected));
    EXPECT_EQ(read.score->notes[0]->tag, 0U);
    EXPECT_EQ(read.score->tempo, 60.0);
    EXPECT_EQ(read.score->meterNumerator, 3);
    EXPECT_EQ(read.score->keySharps, -2);
    EXPECT_TRUE(read.score->keyMinor);
    EXPECT_EQ(read.score->bars, (TBars{{5, {2, 4}}, {9, {1, 3}}}));  // numbered as in the file, none replaced
    stored.head[9] = 0;  // version 0 has no bars, and leaves those that are there
    stored.bars.clear();
    MemoryStream stream(Text(stored.All()));
    read.score->Read(stream);
    EXPECT_EQ(read.score->bars.size(), 2U);
}

TEST(StoredScore, TimesAreConvertedFromTheFilesRate) {
    StoredScore stored;
    stored.rate = {0, 0, 0xAC, 0x44};  // 44100
    EXPECT_EQ(ReadScore(stored.All()).score->notes.at(0)->Begin(), 50U);
    stored.rate = {0xFF, 0xFF, 0xFF, 0xFF};  // both times become 0
    EXPECT_EQ(ReadScore(stored.All()).score->notes.at(0)->End(), 1U);
    stored.rate = {0, 0, 0, 1};
    stored.note[0] = 0xFF;  // 0xFF000064 * 22050, cut to 32 bits, is past the end's 200 * 22050
    const ReadScore wrapped(stored.All());
    EXPECT_EQ(wrapped.score->notes.at(0)->Begin(), static_cast<std::uint32_t>(0xFF000064U * 22050U));
    EXPECT_EQ(wrapped.score->notes.at(0)->Length(), 1U);
}

TEST(StoredScore, DamageHasItsMessageAndNotesBeforeABreakAreKept) {
    const std::string unknown = "Unknown data format signature", invalid = "Invalid data format";
    const std::string newer = "Cannot read file: newer or incompatible file format.";
    const std::tuple<std::size_t, std::uint8_t, std::string> rows[] = {
        {0, 'S', unknown}, {5, 'S', unknown}, {9, 2, newer}, {14, 0x80, invalid}};
    for (const auto& [at, byte, failure] : rows) {
        Bytes damaged = StoredScore().All();
        damaged.at(at) = byte;
        EXPECT_EQ(ReadScore(damaged).failure, failure);
    }
    StoredScore stored;
    stored.rate = {0, 0, 0, 0};
    EXPECT_EQ(ReadScore(stored.All()).failure, invalid);
    const Bytes whole = StoredScore().All();
    for (std::size_t length = 18; length < whole.size(); ++length) {
        const ReadScore read(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        EXPECT_EQ(read.failure, "Can't read byte from stream.");
        EXPECT_EQ(read.score->notes.size(), length < 18 + 24 ? 0U : 1U) << length << " bytes";
    }
}

TEST(StoredScore, FilesAreSavedAndLoadedOrTheReasonIsSaid) {
    const TempFolder folder;
    const std::string path = folder / "score";
    const ReadScore read(StoredScore().All());
    std::string error = "old";
    EXPECT_TRUE(SaveSerial(path, *read.score, error));
    EXPECT_EQ(error, "");
    EXPECT_EQ(ReadAll(path), Text(Written(*read.score)));
    const auto loaded = std::make_unique<TNotes>();
    EXPECT_TRUE(LoadSerial(path, *loaded, error));
    EXPECT_TRUE(loaded->notes.at(0)->Equals(*read.score->notes.at(0)));
    EXPECT_FALSE(LoadSerial("/nowhere/x", *loaded, error));
    EXPECT_EQ(error, "Cannot open file </nowhere/x> for reading.");
    EXPECT_THROW(LoadSerial("/tmp", *loaded, error), std::runtime_error);
}
