#include "tools/host/audio_file.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace {

constexpr std::size_t pieceFrames = 4096;
constexpr sf_count_t unknownLength = SF_COUNT_MAX;

// Bytes by which a file may miss what its header says: a few writers count padding or the header itself.
constexpr unsigned long long forgivenBytes = 64;

[[noreturn]] void Fail(const std::string& reason) {
    throw std::runtime_error(reason);
}

// libsndfile ends its texts with a full stop, some with a line break, and begins some with "Error : ".
std::string LibraryText(SNDFILE* file) {
    std::string text = sf_strerror(file);
    while (!text.empty() && (text.back() == '.' || text.back() == '\n')) text.pop_back();
    if (text.starts_with("Error : ")) text.erase(0, 8);
    return text;
}

// A program that writes into a pipe cannot come back to fill in the length, and puts a number near one of
// the limits of 32 bits there. Such a file is whole however long it is.
bool IsStreamLength(unsigned long long bytes) {
    return (bytes >= 0x7FFFF000 && bytes <= 0x80000100) || (bytes >= 0xFFFFF000 && bytes <= 0xFFFFFFFF);
}

// Formats that state their length in bytes have it corrected by the library, which leaves a line in its log:
// "data : 192000 (should be 95978)". The names are those of WAV, AIFF, AU, W64 and RF64.
bool LogTellsOfMissingBytes(const std::string& log) {
    static constexpr std::array<std::string_view, 5> names = {"data", "SSND", "Data Size", "riff",
                                                              "Riff size"};
    static constexpr std::string_view correction = "(should be ";
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(':');
        const std::size_t corrected = line.find(correction);
        if (colon == std::string::npos || corrected == std::string::npos) continue;
        const std::size_t from = line.find_first_not_of(' ');
        const std::size_t past = line.find_last_not_of(' ', colon - 1) + 1;
        if (past <= from) continue;
        const std::string_view name = std::string_view(line).substr(from, past - from);
        if (std::find(names.begin(), names.end(), name) == names.end()) continue;
        const unsigned long long stated = std::strtoull(line.c_str() + colon + 1, nullptr, 10);
        const unsigned long long present =
            std::strtoull(line.c_str() + corrected + correction.size(), nullptr, 10);
        if (stated > present + forgivenBytes && !IsStreamLength(stated)) return true;
    }
    return false;
}

}  // namespace

AudioFile::AudioFile(const std::string& path, Channel newChannel) : channel(newChannel) {
    std::error_code ignored;  // what cannot be looked at is told by the library in its own words
    const auto kind = std::filesystem::status(path, ignored).type();
    if (kind == std::filesystem::file_type::not_found) Fail("no such file");
    if (kind == std::filesystem::file_type::directory) Fail("is a folder");
    {
        static std::mutex opening;  // the reason for a failed opening lies in one place for all threads
        const std::lock_guard lock(opening);
        file.reset(sf_open(path.c_str(), SFM_READ, &info));
        if (file == nullptr) Fail("cannot be read as audio: " + LibraryText(nullptr));
    }
    if (info.samplerate < slowestRate || info.samplerate > fastestRate)
        Fail("its rate of " + std::to_string(info.samplerate) + " Hz is outside " +
             std::to_string(slowestRate) + " to " + std::to_string(fastestRate) + " Hz");
    if (IsCutShort()) Fail("is truncated: it holds less than it says");
    interleaved.resize(pieceFrames * static_cast<std::size_t>(info.channels));
}

// What can be known of it before reading.
bool AudioFile::IsCutShort() const {
    const int container = info.format & SF_FORMAT_TYPEMASK;
    // The length of an Ogg stream stands in its last page.
    if (container == SF_FORMAT_OGG) return info.frames == unknownLength && info.seekable != 0;
    std::string log(16384, '\0');
    sf_command(file.get(), SFC_GET_LOG_INFO, log.data(), static_cast<int>(log.size()));
    return LogTellsOfMissingBytes(log);
}

double AudioFile::Progress() const {
    if (info.frames == unknownLength || info.frames <= 0) return 0;
    return std::min(1.0, static_cast<double>(framesRead) / static_cast<double>(info.frames));
}

std::size_t AudioFile::Read(float* out, std::size_t count) {
    const auto channels = static_cast<std::size_t>(info.channels);
    std::size_t done = 0;
    while (done < count) {
        const auto wanted = static_cast<sf_count_t>(std::min(count - done, pieceFrames));
        const sf_count_t got = sf_readf_float(file.get(), interleaved.data(), wanted);
        if (got <= 0) break;
        for (std::size_t frame = 0; frame < static_cast<std::size_t>(got); ++frame) {
            const float* const samples = interleaved.data() + frame * channels;
            out[done + frame] =
                channel == Channel::first
                    ? samples[0]
                    : std::accumulate(samples, samples + channels, 0.0F) / static_cast<float>(channels);
        }
        done += static_cast<std::size_t>(got);
        framesRead += got;
    }
    if (done < count) CheckEnd();
    return done;
}

void AudioFile::CheckEnd() const {
    // The length of an MPEG file is a guess where its writer left none.
    const bool lengthIsKnown =
        info.frames != unknownLength && (info.format & SF_FORMAT_TYPEMASK) != SF_FORMAT_MPEG;
    const std::string trouble = sf_error(file.get()) != SF_ERR_NO_ERROR ? ", " + LibraryText(file.get()) : "";
    if (lengthIsKnown && framesRead < info.frames)
        Fail("is truncated: " + std::to_string(framesRead) + " of " + std::to_string(info.frames) +
             " samples" + trouble);
    if (!trouble.empty()) Fail("cannot be read to its end" + trouble);
}
