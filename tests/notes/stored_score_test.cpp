#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <memory>
#include <random>
#include <stdexcept>

#include "notes/notes.h"
#include "tests/notes/memory_stream.h"
#include "tests/notes/score_check.h"
#include "tests/notes/temporary_file.h"

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
        MemoryStream stream(bytes);
        try {
            score->Read(stream);
        } catch (const std::runtime_error& error) {
            failure = error.what();
        }
    }
    std::unique_ptr<TNotes> score = std::make_unique<TNotes>();
    std::string failure = "none";
};

std::unique_ptr<TNotes> RandomScore(std::minstd_rand& random) {
    auto score = std::make_unique<TNotes>();
    const auto byte = [&random] { return static_cast<std::uint8_t>(random()); };
    for (auto left = random() % 60; left > 0; --left) {
        const auto begin = static_cast<std::uint32_t>(random() % 200);
        TNote* note = score->AddNote(begin, begin + byte(), byte(), -byte(), byte(), byte() & 7, byte());
        note->tag = byte();
        note->AssignFlag(nfExcludedA, random() % 2 == 0);
        note->AssignFlag(nfIncluded, random() % 2 == 0);
    }
    for (TLayerRecord& layer : score->layers) layer.name = std::string(random() % 40, 'n');
    for (auto left = random() % 9; left > 0; --left)
        score->AddBar(static_cast<std::uint32_t>(random() % 999), byte());
    score->title = std::string(random() % 40, 't');
    score->tempo = static_cast<double>(random()) / 997.0;
    score->keySharps = static_cast<std::int8_t>(byte());
    score->keyMinor = random() % 2 == 0;
    return score;
}

// `count` notes in descending order of time, `length` ticks each, a tick apart.
Bytes DescendingNotes(std::uint32_t count, std::uint32_t length) {
    StoredScore stored;
    MemoryStream notes;
    for (std::uint32_t index = count; index-- > 0;) {
        PutU32(notes, index);
        PutU32(notes, index + length);
        notes.data.insert(notes.data.end(), stored.note.begin() + 8, stored.note.end());
        notes.SeekToEnd();
    }
    stored.note = notes.data;
    stored.count = {0, 0, static_cast<std::uint8_t>(count >> 8), static_cast<std::uint8_t>(count)};
    return stored.All();
}

// What SaveSerial says when files may not grow past `limit` bytes.
std::string SaveWithinFileSize(const TNotes& score, const std::string& path, rlim_t limit) {
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit small{limit, usual.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    std::string error = "untouched";
    const bool saved = SaveSerial(path, score, error);
    setrlimit(RLIMIT_FSIZE, &usual);
    EXPECT_EQ(saved, error.empty());
    return error;
}

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
    const ReadScore read(stored.All());
    ASSERT_EQ(read.failure, "none");
    const TNote& note = *read.score->notes.at(0);
    TSimpleNote expected;
    expected.Init(100, 200, 45, -624, 5, 1, 2);
    expected.flags = nfExcludedA | nfExcludedB;
    EXPECT_TRUE(note.Equals(expected));
    EXPECT_EQ(note.tag, 0U);
    EXPECT_EQ(read.score->tempo, 60.0);
    EXPECT_EQ(read.score->meterNumerator, 3);
    EXPECT_EQ(read.score->keySharps, -2);
    EXPECT_TRUE(read.score->keyMinor);
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

TEST(StoredScore, NotesThatBeginTogetherKeepTheFilesOrder) {
    StoredScore stored;
    Bytes notes;
    for (std::uint8_t midi = 0; midi < 100; ++midi) {
        stored.note[3] = midi % 2 == 0 ? 10 : 5;  // begin
        stored.note[8] = midi;
        notes.insert(notes.end(), stored.note.begin(), stored.note.end());
    }
    stored.note = notes;
    stored.count[3] = 100;
    const ReadScore read(stored.All());
    ASSERT_EQ(read.score->notes.size(), 100U);
    for (unsigned place = 0; place < 50; ++place) {
        EXPECT_EQ(read.score->notes[place]->pitch, static_cast<std::uint8_t>(2 * place + 1 - 24));
        EXPECT_EQ(read.score->notes[50 + place]->pitch, static_cast<std::uint8_t>(2 * place - 24));
    }
}

TEST(StoredScore, BarsAreNumberedInFileOrderAndNeverReplaced) {
    StoredScore stored;
    stored.bars = {0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 9, 0, 0, 0, 3,
                   0, 0, 0, 5, 0, 0, 0, 4, 0, 0, 0, 9, 0, 0, 0, 8};
    ReadScore read(stored.All());
    EXPECT_EQ(read.score->bars, (TBars{{5, {2, 4}}, {9, {1, 3}}}));
    stored.head[9] = 0;  // version 0 has no bars, and leaves those that are there
    stored.bars.clear();
    MemoryStream stream(stored.All());
    read.score->Read(stream);
    EXPECT_EQ(read.score->bars.size(), 2U);
}

// The second file has tags of zero, and one more empty name; the third differs by a name from the second.
TEST(StoredScore, WritingWhatWasReadGivesTheSameBytes) {
    std::minstd_rand random(1);
    for (int round = 0; round < 300; ++round) {
        const auto score = RandomScore(random);
        const ReadScore read(Written(*score));
        ASSERT_EQ(read.failure, "none");
        ASSERT_EQ(WhatIsWrong(*read.score), "");
        score->ResizeLayers(score->layers.size() + 1);
        for (TNote* note : score->notes) note->tag = 0;
        ASSERT_EQ(Written(*read.score), Written(*score)) << "round " << round;
    }
}

TEST(StoredScore, EachBadHeaderHasItsMessage) {
    for (std::size_t byte = 0; byte < 6; ++byte) {
        StoredScore stored;
        stored.head[byte] ^= 1;
        EXPECT_EQ(ReadScore(stored.All()).failure, "Unknown data format signature");
    }
    StoredScore version, rate, count;
    version.head[9] = 2;
    rate.rate = {0, 0, 0, 0};
    count.count = {0x80, 0, 0, 0};
    EXPECT_EQ(ReadScore(version.All()).failure, "Cannot read file: newer or incompatible file format.");
    EXPECT_EQ(ReadScore(rate.All()).failure, "Invalid data format");
    EXPECT_EQ(ReadScore(count.All()).failure, "Invalid data format");
}

TEST(StoredScore, EveryProperPrefixFailsAndKeepsTheNotesBeforeTheBreak) {
    std::minstd_rand random(3);
    const Bytes whole = Written(*RandomScore(random));
    const std::size_t notes = ReadScore(whole).score->notes.size();
    ASSERT_GT(notes, 5U);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const ReadScore read(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        ASSERT_EQ(read.failure, "Can't read byte from stream.") << "of " << length << " bytes";
        const std::size_t complete = length < 18 ? 0 : std::min(notes, (length - 18) / 24);
        ASSERT_EQ(read.score->notes.size(), complete);
    }
}

TEST(StoredScore, CountsThatLieCostNothing) {
    StoredScore notes, layers, title, bars;
    notes.count = {0x7F, 0xFF, 0xFF, 0xFF};
    layers.layers = title.title = {0xFF, 0xFF, 0xFF, 0xFF};
    bars.bars = Bytes(8, 0xFF);
    for (const StoredScore* stored : {&notes, &layers, &title, &bars}) {
        const MemoryBudget budget(65536);
        EXPECT_EQ(ReadScore(stored->All()).failure, "Can't read byte from stream.");
    }
}

// 16 KiB and 1 KiB for each byte of the file at most, whatever the order of the notes.
TEST(StoredScore, MemoryIsInProportionToTheFileWhereNotesDoNotOverlap) {
    for (const std::uint32_t count : {1U, 10U, 30000U}) {
        const Bytes bytes = DescendingNotes(count, 1);
        const MemoryBudget budget(16384 + 1024 * bytes.size());
        const ReadScore read(bytes);
        EXPECT_EQ(read.failure, "none");
        EXPECT_EQ(read.score->notes.size(), count);
        EXPECT_EQ(read.score->notes.at(count - 1)->Begin(), count - 1);
    }
}

// 20000 notes that all sound together would fill gigabytes with lists of each other.
TEST(StoredScore, NotesThatAllOverlapMeetTheBudget) {
    const Bytes bytes = DescendingNotes(20000, 40000);
    MemoryBudget observer(std::size_t{1} << 40);
    EXPECT_THROW(ReadScore{bytes}, std::bad_alloc);
    EXPECT_LE(observer.Highest(), TNotes::readerBudget);
    EXPECT_GT(observer.Highest(), TNotes::readerBudget / 2);
}

TEST(StoredScore, SavingAndLoadingAFile) {
    const TemporaryFile path;
    const ReadScore read(StoredScore().All());
    std::string error = "old";
    EXPECT_TRUE(SaveSerial(path.name, *read.score, error));
    EXPECT_EQ(error, "");
    EXPECT_EQ(path.Content(), Written(*read.score));
    const auto loaded = std::make_unique<TNotes>();
    EXPECT_TRUE(LoadSerial(path.name, *loaded, error));
    EXPECT_TRUE(loaded->notes.at(0)->Equals(*read.score->notes.at(0)));
}

TEST(StoredScore, WhatCannotBeOpenedOrReadSaysSo) {
    const auto score = std::make_unique<TNotes>();
    std::string error;
    for (const std::string& path : {std::string("/tmp"), std::string("/nowhere/x"), std::string(5000, 'x')}) {
        EXPECT_FALSE(SaveSerial(path, *score, error));
        EXPECT_EQ(error, "Cannot open file <" + path + "> for writing.");
    }
    EXPECT_FALSE(LoadSerial("/nowhere/x", *score, error));
    EXPECT_EQ(error, "Cannot open file </nowhere/x> for reading.");
    EXPECT_THROW(LoadSerial("/tmp", *score, error), std::runtime_error);
}

// The system's refusals come late, when its own buffers go out; they are seen all the same.
TEST(StoredScore, AFullDiskIsSeen) {
    const ReadScore read(StoredScore().All());
    std::string error;
    EXPECT_FALSE(SaveSerial("/dev/full", *read.score, error));
    EXPECT_EQ(error, "Writing file </dev/full> is failed.");

    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    const TemporaryFile path;
    const std::size_t size = Written(*read.score).size();
    for (std::size_t limit = 0; limit <= size; ++limit)
        EXPECT_EQ(SaveWithinFileSize(*read.score, path.name, limit),
                  limit < size ? "Writing file <" + path.name + "> is failed." : "");
    std::signal(SIGXFSZ, previous);
}
