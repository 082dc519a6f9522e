#include "tools/host/audio_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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

// What helps where the library does not know a format, or cannot read it from a pipe.
std::string Advice(const std::string& path, std::filesystem::file_type kind) {
    if (kind == std::filesystem::file_type::regular)
        return "; if ffmpeg knows it: ffmpeg -v error -i " + path + " -f wav - | orva-host render /dev/stdin";
    return "; through a pipe WAV and AU can be heard: flac -dc, or ffmpeg -f wav -, gives them";
}

// NaN does not count. Eight maxima side by side are what the compiler turns into vector code.
float LargestAmplitude(const float* samples, std::size_t count) {
    std::array<float, 8> largest{};
    std::size_t i = 0;
    for (; i + largest.size() <= count; i += largest.size())
        for (std::size_t lane = 0; lane < largest.size(); ++lane)
            largest[lane] = std::max(largest[lane], std::abs(samples[i + lane]));
    for (; i < count; ++i) largest[0] = std::max(largest[0], std::abs(samples[i]));
    return *std::max_element(largest.begin(), largest.end());
}

// An MPEG file says how long it is in its first frame if at all; else the library's figure is a guess. In
// front of that frame there may be a tag, whose size stands in its bytes 6 to 9, seven bits each.
bool StatesItsLength(const std::string& path) {
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(path, unknown)) return false;
    std::ifstream file(path, std::ios::binary);
    std::array<char, 10> tag{};
    std::streamoff size = 0;
    if (file.read(tag.data(), tag.size()) && std::string_view(tag.data(), 3) == "ID3") {
        for (std::size_t i = 6; i < 10; ++i) size = size << 7 | (tag[i] & 0x7F);
        size += static_cast<std::streamoff>(tag.size());
    }
    std::string frame(256, '\0');
    file.clear();
    file.seekg(size).read(frame.data(), static_cast<std::streamsize>(frame.size()));
    return frame.find("Xing") != std::string::npos || frame.find("Info") != std::string::npos;
}

}  // namespace

AudioFile::AudioFile(const std::string& path, Channel newChannel) : channel(newChannel) {
    std::error_code ignored;  // the library reports what cannot be looked at
    const auto kind = std::filesystem::status(path, ignored).type();
    if (kind == std::filesystem::file_type::not_found) Fail("no such file");
    if (kind == std::filesystem::file_type::directory)
        Fail("is a folder, with no recordings in it that can be read");
    {
        static std::mutex opening;  // the reason for a failed opening lies in one place for all threads
        const std::lock_guard lock(opening);
        file.reset(sf_open(path.c_str(), SFM_READ, &info));
        if (file == nullptr) Fail("cannot be read as audio: " + LibraryText(nullptr) + Advice(path, kind));
    }
    // A pipe cannot be measured: a length near a limit of 32 bits, or past it, was put there by a writer who
    // did not know it. A sample takes four bytes at most.
    if (info.seekable == 0 &&
        info.frames >= static_cast<sf_count_t>(0x7FFFF000) / 4 / std::max(1, info.channels))
        info.frames = unknownLength;
    if ((info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG && !StatesItsLength(path))
        info.frames = unknownLength;
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
        float* const heard = out + done;
        float* const samples = channels == 1 ? heard : interleaved.data();
        const auto wanted = static_cast<sf_count_t>(std::min(count - done, pieceFrames));
        const sf_count_t got = sf_readf_float(file.get(), samples, wanted);
        if (got <= 0) break;
        const auto frames = static_cast<std::size_t>(got);
        if (channels > 1) Choose(samples, frames, heard);
        peaks.heard = std::max(peaks.heard, LargestAmplitude(heard, frames));
        peaks.file = std::max(peaks.file, LargestAmplitude(samples, frames * channels));
        done += frames;
        framesRead += got;
    }
    if (done < count) CheckEnd();
    return done;
}

void AudioFile::Choose(const float* samples, std::size_t frames, float* heard) const {
    const auto channels = static_cast<std::size_t>(info.channels);
    for (std::size_t frame = 0; frame < frames; ++frame, samples += channels)
        heard[frame] = channel == Channel::first ? samples[0]
                                                 : std::accumulate(samples, samples + channels, 0.0F) /
                                                       static_cast<float>(channels);
}

void AudioFile::CheckEnd() const {
    const bool lengthIsKnown = info.frames != unknownLength;
    const std::string trouble = sf_error(file.get()) != SF_ERR_NO_ERROR ? ", " + LibraryText(file.get()) : "";
    if (lengthIsKnown && framesRead < info.frames)
        Fail("is truncated: " + std::to_string(framesRead) + " of " + std::to_string(info.frames) +
             " samples" + trouble);
    if (!trouble.empty()) Fail("cannot be read to its end" + trouble);
}
