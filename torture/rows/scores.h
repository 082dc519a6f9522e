#pragma once
#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include "notes/notes.h"
#include "tests/notes/memory_stream.h"

// A score of up to `most` notes with everything that a stored one can have, crowded enough for notes to meet.
inline std::unique_ptr<TNotes> RandomScore(std::mt19937_64& random, std::uint64_t most) {
    auto score = std::make_unique<TNotes>();
    const auto byte = [&random] { return static_cast<std::uint8_t>(random()); };
    const std::uint64_t span = std::uint64_t{1} << (8 + random() % 25);  // ticks
    for (std::uint64_t left = random() % (most + 1); left > 0; --left) {
        const auto begin = static_cast<std::uint32_t>(random() % span);
        const auto end = static_cast<std::uint32_t>(begin + random() % (span / 8));
        TNote* const note = score->AddNote(begin, end, byte(), static_cast<std::int32_t>(random()), byte(),
                                           byte() & 7, byte());
        note->tag = byte();
        note->AssignFlag(nfExcludedA, random() % 2 == 0);
        note->AssignFlag(nfIncluded, random() % 2 == 0);
    }
    const auto text = [&] {
        std::string bytes(random() % 20, '\0');
        for (char& character : bytes) character = static_cast<char>(random());
        return bytes;
    };
    for (TLayerRecord& layer : score->layers) layer.name = text();
    for (std::uint64_t left = random() % 9; left > 0; --left)
        score->AddBar(static_cast<std::uint32_t>(random() % span), byte());
    score->title = text();
    score->tempo = std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 64) - 90);
    score->meterNumerator = byte();
    score->meterDenominatorLog2 = byte();
    score->keySharps = static_cast<std::int8_t>(byte());
    score->keyMinor = random() % 2 == 0;
    return score;
}

// Reads `bytes` into the score. The result is empty, the message raised, or "memory".
inline std::string FailureOfReading(TNotes& score, const Bytes& bytes) {
    MemoryStream stream(bytes);
    try {
        score.Read(stream);
    } catch (const std::runtime_error& failure) {
        return failure.what();
    } catch (const std::bad_alloc&) {
        return "memory";
    } catch (const std::length_error&) {
        return "memory";
    }
    return "";
}

constexpr const char* endOfData = "Can't read byte from stream.";

inline bool IsStatedFailure(const std::string& failure) {
    return failure.empty() || failure == "memory" || failure == endOfData ||
           failure == "Unknown data format signature" || failure == "Invalid data format" ||
           failure == "Unknown data format version" ||
           failure == "Cannot read file: newer or incompatible file format.";
}
