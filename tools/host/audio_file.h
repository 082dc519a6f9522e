#pragma once
#include <sndfile.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// An audio file being read from start to end, one channel wide: any format that libsndfile knows, in pieces,
// so that memory does not grow with its length.
//
// Errors are std::runtime_error with the reason as its text, without the file's name: what is missing, a
// folder, not audio, at an unusable rate, or shorter than it says of itself. Audio of no length is no error.
// Threads: one thread a file; several files may be open on several threads.
class AudioFile {
public:
    enum class Channel { first, mix };  // a mix is the mean of all channels

    static constexpr int slowestRate = 8000;    // Hz, the range that the recognition is made for
    static constexpr int fastestRate = 192000;  // Hz

    AudioFile(const std::string& path, Channel newChannel);

    std::int32_t Rate() const { return info.samplerate; }  // Hz
    // The share that has been read, 0 to 1; 0 as long as the length is unknown.
    double Progress() const;
    // The largest amplitudes so far, full scale at 1.0.
    struct Peaks {
        float heard = 0;  // of what Read has given
        float file = 0;   // of all channels
    };
    const Peaks& Loudest() const { return peaks; }
    // Fills `out` with up to `count` samples, full scale at 1.0. Fewer come at the end only, none after it.
    std::size_t Read(float* out, std::size_t count);

private:
    struct Close {
        void operator()(SNDFILE* opened) const { sf_close(opened); }
    };

    bool IsCutShort() const;
    void Choose(const float* samples, std::size_t frames, float* heard) const;  // of all channels, one
    void CheckEnd() const;  // fails unless the end that was reached is the end of the audio

    Channel channel;
    SF_INFO info{};
    std::unique_ptr<SNDFILE, Close> file;
    sf_count_t framesRead = 0;
    Peaks peaks;
    std::vector<float> interleaved;  // one piece, all channels
};
