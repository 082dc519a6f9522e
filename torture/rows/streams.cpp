// The file stream beside a plain vector of bytes, and every way in which writing a file may fail.
#include <fcntl.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <limits>

#include "platform/user_store.h"
#include "plugin/mem_log.h"
#include "tests/support/temp_folder.h"
#include "torture/row.h"
#include "torture/rows/plug_in.h"
#include "torture/rows/scores.h"

namespace {

constexpr std::int32_t lastPosition = std::numeric_limits<std::int32_t>::max();
constexpr auto anew = std::ios_base::binary | std::ios_base::in | std::ios_base::out | std::ios_base::trunc;

Bytes ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// --- FIL-6 ---

constexpr std::int32_t bufferSizes[] = {0, 511, 512, 513, 65536};
constexpr int operationsEach = 1000;

// One operation on both; what they answer must agree.
void Operate(Trial& trial, TFStream& file, MemoryStream& plain, std::int32_t furthest) {
    const auto place = static_cast<std::int32_t>(trial.Below(static_cast<std::uint64_t>(furthest)));
    std::uint8_t a = static_cast<std::uint8_t>(trial.random()), b = a;
    switch (trial.Below(40)) {
        case 0: file.SetPosition(place), plain.SetPosition(place); break;
        case 1: trial.Require(file.SeekToEnd() == plain.SeekToEnd(), "another end"); break;
        case 2: file.Rewind(), plain.Rewind(); break;
        case 3:
            file.Flush();
            trial.Require(file.GetSize() == plain.GetSize(), "another size");
            break;
        case 4: file.SetPosition(-1 - place); break;  // refused
        case 5: {                                     // close by, where the buffer ends
            const std::int32_t near =
                std::max(file.GetPosition() + static_cast<std::int32_t>(trial.Below(1100)) - 550, 0);
            file.SetPosition(near), plain.SetPosition(near);
            break;
        }
        default:
            if (trial.OneIn(2)) {
                file.PutByte(a), plain.PutByte(b);
            } else {
                trial.Require(file.GetByte(a) == plain.GetByte(b), "a byte where there is none, or none");
                trial.Require(a == b, "another byte");
            }
    }
    trial.Require(file.GetPosition() == plain.GetPosition(), "another position");
}

void TryStream(Trial& trial) {
    const std::int32_t size = bufferSizes[trial.number % std::size(bufferSizes)];
    const TempFolder folder;
    const std::string path = folder / "stream";
    MemoryStream plain;
    {
        const std::int32_t furthest = trial.OneIn(10) ? 200000 : 3000;
        TFStream file(path, anew, size);
        for (int count = 0; count < operationsEach; ++count) Operate(trial, file, plain, furthest);
        trial.Require(!file.Failed(), "the stream failed");
    }
    trial.Require(ContentOf(path) == plain.data, "the file holds something else");
}

const Registered stream({"FIL-6", "reads and writes a file as if it were memory", inRelease | inAddress,
                         10000, 100, 20, TryStream});

// --- FIL-7 ---

constexpr std::uint64_t fileSizes = 4097, otherFailures = 20;

class SmallFiles {  // the system lets no file grow past `bytes`
public:
    explicit SmallFiles(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &usual);
        const rlimit small{bytes, usual.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        handler = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~SmallFiles() {
        setrlimit(RLIMIT_FSIZE, &usual);
        std::signal(SIGXFSZ, handler);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;

private:
    rlimit usual{};
    void (*handler)(int) = nullptr;
};

std::size_t OpenFiles() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

// Both ways of storing a score, and what they say where the file `path` takes only so much.
void RequireSaving(Trial& trial, const TNotes& score, const std::string& path, bool works,
                   const std::string& text) {
    std::string error = "untouched";
    trial.Require(SaveSerial(path, score, error) == works, works ? "not saved" : "saved where it cannot be");
    trial.Require(error == (works ? "" : text), "told <" + error + ">");
}

std::string CannotOpen(const std::string& path) {
    return "Cannot open file <" + path + "> for writing.";
}
std::string CannotWrite(const std::string& path) {
    return "Writing file <" + path + "> is failed.";
}

// A plug-in that has recorded some music, the same in each process.
CORVAguivst& Recorded(Trial& trial) {
    static PlugIn plugIn;
    if (plugIn.clock > 0) return plugIn.Object();
    std::mt19937_64 random(1);
    plugIn.Object().startRecording();
    plugIn.Play(RandomMusic(random, 3, 44100));
    plugIn.Object().stopRecording();
    trial.Require(!plugIn.Object().nothingRecorded(), "three seconds of music give no take");
    return plugIn.Object();
}

void TryFileSize(Trial& trial, std::size_t limit) {
    const TempFolder folder;
    std::unique_ptr<TNotes> score;
    do score = RandomScore(trial.random, 150);
    while (Written(*score).size() > fileSizes - 1);
    CORVAguivst& plugIn = Recorded(trial);
    trial.Require(plugIn.saveRecording(folder / "take.mid"), "a take cannot be saved");
    const std::size_t midi = ContentOf(folder / "take.mid").size();
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    const std::string old(255, 'o'), text(trial.Below(256), 'n');
    trial.Require(writeRegistryString("Name", old), "no setting can be stored");

    const SmallFiles small(limit);
    const std::string path = folder / "score";
    RequireSaving(trial, *score, path, Written(*score).size() <= limit, CannotWrite(path));
    trial.Require(plugIn.saveRecording(folder / "again.mid") == (midi <= limit),
                  "a take of " + std::to_string(midi) + " bytes where " + std::to_string(limit) + " fit");
    const bool stored = writeRegistryString("Name", text);
    trial.Require(stored == (text.size() <= limit), "a setting that does not fit");
    trial.Require(readRegistryString("Name") == (stored ? text : old), "neither the old text nor the new");
    getMemLog().saveToFile(folder / "log");
}

// Where nothing can be written at all.
void TryPlace(Trial& trial, const std::string& path, bool opens) {
    const auto score = RandomScore(trial.random, 100);
    score->AddNote(1, 2, 3, 4, 5, 6, 7);
    RequireSaving(trial, *score, path, false, opens ? CannotWrite(path) : CannotOpen(path));
    trial.Require(!Recorded(trial).saveRecording(path), "a take is saved where it cannot be");
    trial.Require(getMemLog().saveToFile(path) == opens, "the log is saved where it cannot be, or not");
}

// Removed while it is open: the stream goes on, and nothing is left of it.
void TryRemoved(Trial& trial) {
    const TempFolder folder;
    const std::string path = folder / "removed";
    TFStream file(path, anew, bufferSizes[trial.Below(std::size(bufferSizes))]);
    MemoryStream plain;
    for (int count = 0; count < operationsEach; ++count) {
        if (count == operationsEach / 2) std::filesystem::remove(path);
        Operate(trial, file, plain, 3000);
    }
    trial.Require(file.Finish(), "the stream failed");
    trial.Require(!std::filesystem::exists(path), "the file is there again");
}

// Close to the last position that 31 bits hold, in a file that takes no room on the disk.
void TryLastPositions(Trial& trial) {
    const TempFolder folder;
    TFStream file(folder / "sparse", anew, bufferSizes[trial.Below(std::size(bufferSizes))]);
    auto position = static_cast<std::int64_t>(lastPosition) - static_cast<std::int64_t>(trial.Below(2000));
    file.SetPosition(static_cast<std::int32_t>(position));
    for (int count = 0; count < 3000; ++count) {
        trial.Require(file.GetPosition() == position, "another position");
        std::uint8_t byte = 0;
        const bool refused = position == lastPosition;
        if (trial.OneIn(3)) {
            file.PutByte(7);
            position += refused ? 0 : 1;
            trial.Require(!refused || file.Failed(), "a byte behind the last position");
            if (refused) return;
        } else if (file.GetByte(byte)) {
            trial.Require(!refused, "a byte from behind the last position");
            ++position;
        }
    }
}

void TryOtherFailure(Trial& trial, std::uint64_t which) {
    const TempFolder folder;
    switch (which) {
        case 0: return TryPlace(trial, "/dev/full", true);
        case 1: return TryPlace(trial, folder.path.string(), false);
        case 2: return TryPlace(trial, folder / "none/file", false);
        case 3: return TryPlace(trial, folder / std::string(256, 'n'), false);
        case 4: return TryPlace(trial, "/" + std::string(4096, 'p'), false);
        case 5: return TryPlace(trial, std::string(1 << 20, 'p'), false);
        case 6: return TryPlace(trial, "", false);
        case 7: return TryPlace(trial, "/proc/self/nothing", false);  // refuses the superuser too
        case 8: return TryPlace(trial, "/sys/nothing", false);
        case 9: {
            const std::string loop = folder / "loop";
            std::filesystem::create_symlink(loop, loop);
            return TryPlace(trial, loop, false);
        }
        default: return which % 2 == 0 ? TryRemoved(trial) : TryLastPositions(trial);
    }
}

void TryFailure(Trial& trial) {
    Recorded(trial);
    const std::size_t open = OpenFiles();
    trial.number >= otherFailures ? TryFileSize(trial, trial.number - otherFailures)
                                  : TryOtherFailure(trial, trial.number);
    trial.Require(OpenFiles() == open, "a file was left open");
}

const Registered failures({"FIL-7", "sees that a file could not be written, and says so",
                           inRelease | inAddress, fileSizes + otherFailures, 100, 20, TryFailure});

}  // namespace
