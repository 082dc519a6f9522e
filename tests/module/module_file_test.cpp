// The module's file: what it exports, how it is linked, and that it works in hosts of several kinds.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tests/support/host.h"
#include "tests/support/music.h"
#include "tests/support/process.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trial.h"

namespace {

using testing::IsSubsetOf;
using testing::Not;

std::vector<std::string> Words(const std::string& command) {
    std::istringstream printed(Output(command));
    return {std::istream_iterator<std::string>(printed), {}};
}

// What a tool for object files prints about the module.
std::string Shown(const std::string& program) {
    return Output(program + " " ORVA_MODULE_FILE);
}

TEST(ModuleFile, ExportsTheThreeEntryPointsAndNothingElse) {
    EXPECT_THAT(Words("nm -D --defined-only " ORVA_MODULE_FILE R"( | awk '{ print $2 ":" $3 }')"),
                testing::UnorderedElementsAre("T:MAIN", "T:VSTPluginMain", "T:main"));
}

// Unique symbols would be shared with another plug-in's copy. Nothing of the toolkit's or of ours is looked
// up by name, so that no other copy can step in. It is bound at load, and read-only from then on.
TEST(ModuleFile, SharesNoSymbolAndIsSealed) {
    const struct {
        const char *command, *pattern;
        bool found;
    } rows[] = {{"readelf -Ws", "VSTPluginMain", true},
                {"readelf -Ws", " UNIQUE | IFUNC ", false},
                {"readelf -Wd", "SYMBOLIC", true},
                {"nm -D", "VSTGUI|CORVA|TNote|TRealTime|OpenPlugin", false},
                {"readelf -lW", "GNU_RELRO", true},
                {"readelf -Wd", "BIND_NOW|FLAGS_1.*NOW", true},
                {"readelf -Wd", "FLAGS_1.*NODELETE", true},
                {"readelf -lW", "GNU_STACK[ 0-9a-fx]*RW ", true},
                {"readelf -lW", "LOAD[ 0-9a-fx]*RWE", false},
                {"readelf -Wd", "TEXTREL|RUNPATH|RPATH", false}};
    for (const auto& row : rows)
        EXPECT_EQ(testing::Value(Shown(row.command), testing::ContainsRegex(row.pattern)), row.found)
            << row.command << ": " << row.pattern;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST(ModuleFile, StandsOnTheListedLibrariesAlone) {
    const std::vector<std::string> needed =
        Words("readelf -Wd " ORVA_MODULE_FILE
              R"( | awk -F '[][]' '/NEEDED/ { sub(/[.]so.*/, "", $2); print $2 }')");
    // clang-format off
    const std::vector<std::string> listed = {  // the languages', the loader, and what is used of the system
        "libc", "libm", "libstdc++", "libgcc_s", "ld-linux-x86-64", "ld-linux-aarch64", "libhwy",
        "librtmidi", "libasound", "libjack", "libX11", "libxcb", "libxcb-util", "libxcb-cursor",
        "libxcb-keysyms", "libxcb-xkb", "libxkbcommon", "libxkbcommon-x11", "libcairo", "libpangocairo-1.0",
        "libpangoft2-1.0", "libpango-1.0", "libglib-2.0", "libgobject-2.0", "libfontconfig", "libfreetype"};
    // clang-format on
    EXPECT_THAT(needed, testing::Contains("libstdc++"));
    EXPECT_THAT(needed, IsSubsetOf(listed));
    EXPECT_THAT(Shown("ldd -r"), Not(testing::ContainsRegex("undefined|not found")));
}

// A plug-in must not change what the host's process is, nor end it, nor write past what it was given, nor
// leave a destructor to a thread that ends after it.
TEST(ModuleFile, TakesNothingThatReachesAcrossTheProcess) {
    const std::vector<std::string> names =
        Words("nm -D --just-symbols --undefined-only --without-symbol-versions " ORVA_MODULE_FILE);
    // clang-format off
    for (const char* const forbidden : {
            "__cxa_thread_atexit", "__cxa_thread_atexit_impl", "setlocale", "uselocale", "signal",
            "sigaction", "atexit", "system", "popen", "exit",
            "quick_exit", "abort", "gets", "strcpy", "strcat", "sprintf", "vsprintf", "__sprintf_chk",
            "XSetErrorHandler", "XSetIOErrorHandler", "fesetround", "putenv", "setenv", "chdir", "umask"})
        // clang-format on
        EXPECT_THAT(names, Not(testing::Contains(forbidden)));
    // And what guards against overruns is in use.
    EXPECT_THAT(names, testing::Contains("__stack_chk_fail"));
    EXPECT_THAT(names, testing::Contains(testing::EndsWith("_chk")));
}

// --- hosts of several kinds ---

// What a process shares among all its parts: the mask of new files, and the floating-point modes.
std::string State() {
    const mode_t mask = umask(0);
    umask(mask);
    std::feclearexcept(FE_ALL_EXCEPT);
    std::fenv_t modes;
    std::fegetenv(&modes);
    return std::to_string(mask) + std::string(reinterpret_cast<const char*>(&modes), sizeof modes);
}

// Loads all of the files, hears a note through each and unloads them, again and again.
void LiveIn(const std::vector<std::string>& names, int flags) {
    InChild([&](Trial&) {
        const std::string before = State();
        for (std::uint64_t round = Scaled(25); round > 0; --round) {
            std::set<void*> files, entries;
            for (const std::string& name : names) files.insert(dlopen(name.c_str(), RTLD_NOW | flags));
            ASSERT_EQ(files.count(nullptr), 0U) << dlerror();
            EXPECT_EQ(State(), before);
            for (void* const file : files) {
                void* const entry = *entries.insert(dlsym(file, "VSTPluginMain")).first;
                Host host;
                ASSERT_TRUE(host.Open(reinterpret_cast<AEffect* (*)(audioMasterCallback)>(entry)));
                EXPECT_TRUE(host.Play(Tones({69}, 0.3)));
                EXPECT_EQ(host.Sounding(), 1);
            }
            EXPECT_EQ(entries.size(), names.size()) << "a file without an entry of its own";
            for (void* const file : files) dlclose(file);
            EXPECT_EQ(State(), before);
        }
    });
}

TEST(ModuleLoad, WorksInEveryWayOfLoadingAndLeavesTheProcessAsItWas) {
    for (const int flags : {RTLD_LOCAL, RTLD_GLOBAL, RTLD_LOCAL | RTLD_DEEPBIND})
        LiveIn({ORVA_MODULE_FILE}, flags);
    // A program without the C++ library.
    EXPECT_EQ(Output("/usr/bin/python3 -c 'import ctypes; ctypes.CDLL(\"" ORVA_MODULE_FILE "\")'"), "");
}

// Two plug-ins of the same make, visible to all.
TEST(ModuleLoad, CopiesLiveSideBySide) {
    const TempFolder folder;
    for (const char* const name : {"one.so", "two.so"})
        std::filesystem::copy_file(ORVA_MODULE_FILE, folder / name);
    LiveIn({folder / "one.so", folder / "two.so"}, RTLD_GLOBAL);
}

#endif

}  // namespace
