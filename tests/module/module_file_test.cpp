// The module's file: what it exports, how it is linked, and that a host can load it and play.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#include "tests/plugin/fake_host.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSubsetOf;
using testing::Not;

// What a command says, and its exit code behind that if it is not 0.
std::string Output(const std::string& command) {
    std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return "not started";
    std::string text;
    std::array<char, 4096> part{};
    while (std::fgets(part.data(), part.size(), pipe) != nullptr) text += part.data();
    const int status = pclose(pipe);
    return status == 0 ? text : text + "ended with " + std::to_string(status);
}

// What a program of the linker's family says of the module.
std::string Told(const std::string& program) {
    return Output(program + " " ORVA_MODULE_FILE);
}

// The names that the module takes from other libraries, without their versions.
std::vector<std::string> Imports() {
    std::istringstream lines(Told("nm -D --undefined-only"));
    std::vector<std::string> names;
    for (std::string kind, name; lines >> kind >> name;) names.push_back(name.substr(0, name.find('@')));
    return names;
}

TEST(ModuleFile, ExportsTheThreeEntryPointsAndNothingElse) {
    std::istringstream lines(Told("nm -D --defined-only"));
    std::vector<std::string> names;
    for (std::string address, kind, name; lines >> address >> kind >> name;)
        names.push_back(kind + " " + name);
    EXPECT_THAT(names, testing::UnorderedElementsAre("T MAIN", "T VSTPluginMain", "T main"));
}

// Unique symbols would be shared with another plug-in's copy. Nothing of the toolkit's or of ours is looked
// up by name, so that no other copy can step in.
TEST(ModuleFile, SharesNoSymbolWithOtherModules) {
    const std::string symbols = Told("readelf -Ws");
    EXPECT_THAT(symbols, HasSubstr("VSTPluginMain"));
    EXPECT_THAT(symbols, Not(HasSubstr(" UNIQUE ")));
    EXPECT_THAT(symbols, Not(HasSubstr(" IFUNC ")));
    EXPECT_THAT(Told("readelf -Wd"), HasSubstr("SYMBOLIC"));
    EXPECT_THAT(Told("nm -D"), Not(testing::ContainsRegex("VSTGUI|CORVA|TNote|TRealTime|OpenPlugin")));
}

// A destructor that a thread runs when it ends would be gone by then, were the module ever unloaded.
TEST(ModuleFile, LeavesNothingToEndingThreads) {
    EXPECT_THAT(Imports(), Not(testing::Contains(HasSubstr("__cxa_thread_atexit"))));
}

TEST(ModuleFile, IsBoundAtLoadAndReadOnlyFromThenOn) {
    const std::string segments = Told("readelf -lWd");
    EXPECT_THAT(segments, HasSubstr("GNU_RELRO"));
    EXPECT_THAT(segments, testing::ContainsRegex("BIND_NOW|FLAGS_1.*NOW"));
    EXPECT_THAT(segments, testing::ContainsRegex("FLAGS_1.*NODELETE"));
    EXPECT_THAT(segments, testing::ContainsRegex("GNU_STACK[ 0-9a-fx]*RW "));
    EXPECT_THAT(segments, Not(testing::ContainsRegex("LOAD[ 0-9a-fx]*RWE")));
    EXPECT_THAT(segments, Not(HasSubstr("TEXTREL")));
    EXPECT_THAT(segments, Not(testing::ContainsRegex("RUNPATH|RPATH")));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST(ModuleFile, StandsOnTheListedLibrariesAlone) {
    std::istringstream lines(Told("readelf -Wd"));
    std::vector<std::string> needed;
    for (std::string line; std::getline(lines, line);)
        if (line.find("(NEEDED)") != std::string::npos) {
            const std::size_t name = line.find('[') + 1;
            needed.push_back(line.substr(name, line.find(".so") - name));
        }
    const std::vector<std::string> listed = {
        "libc",
        "libm",
        "libstdc++",
        "libgcc_s",  // the languages'
        "ld-linux-x86-64",
        "ld-linux-aarch64",  // the loader: where a thread's own variables are
        "libhwy",
        "librtmidi",
        "libasound",
        "libjack",
        "libX11",
        "libxcb",
        "libxcb-util",
        "libxcb-cursor",
        "libxcb-keysyms",
        "libxcb-xkb",
        "libxkbcommon",
        "libxkbcommon-x11",
        "libcairo",
        "libpangocairo-1.0",
        "libpangoft2-1.0",
        "libpango-1.0",
        "libglib-2.0",
        "libgobject-2.0",
        "libfontconfig",
        "libfreetype"};
    EXPECT_THAT(needed, testing::Contains("libstdc++"));
    EXPECT_THAT(needed, IsSubsetOf(listed));
    EXPECT_THAT(Told("ldd -r"), Not(testing::ContainsRegex("undefined|not found")));
}

// A plug-in must not change what the host's process is, nor end it, nor write past what it was given.
TEST(ModuleFile, TakesNothingThatReachesAcrossTheProcess) {
    const std::vector<std::string> names = Imports();
    for (const char* const forbidden : {"setlocale",
                                        "uselocale",
                                        "signal",
                                        "sigaction",
                                        "atexit",
                                        "system",
                                        "popen",
                                        "exit",

                                        "quick_exit",
                                        "abort",
                                        "gets",
                                        "strcpy",
                                        "strcat",
                                        "sprintf",
                                        "vsprintf",
                                        "__sprintf_chk",
                                        "XSetErrorHandler",
                                        "XSetIOErrorHandler",
                                        "fesetround",
                                        "putenv",
                                        "setenv",
                                        "chdir",
                                        "umask"})
        EXPECT_THAT(names, Not(testing::Contains(forbidden)));
    // And what guards against overruns is in use.
    EXPECT_THAT(names, testing::Contains("__stack_chk_fail"));
    EXPECT_THAT(names, testing::Contains(testing::EndsWith("_chk")));
}

// The entries of .init_array, by the names that the compiler gives them; the toolkit's are its own.
TEST(ModuleFile, RunsFewInitialisersOfItsOwn) {
    std::vector<std::string> ours;
    std::istringstream lines(Told("nm --defined-only"));
    constexpr std::string_view prefix = "_GLOBAL__sub_I_";
    for (std::string address, kind, name; lines >> address >> kind >> name;) {
        if (name.rfind(prefix, 0) != 0) continue;
        const std::string source = name.substr(prefix.size());
        for (const char* const room : {"base", "engine", "notes", "platform", "vst2", "delivery", "midifile",
                                       "harmony", "plugin", "editor", "module"})
            if (std::filesystem::exists(std::filesystem::path(ORVA_SOURCES) / room / source))
                ours.push_back(source);
    }
    EXPECT_THAT(ours, Not(IsEmpty()));  // the device table's, at least
    EXPECT_LE(ours.size(), 8U) << testing::PrintToString(ours);
}

// --- hosts of several kinds ---

// plain_host says what is amiss.
std::string PlainHost(const std::string& how, const std::string& before = {}) {
    return Output(before + " " ORVA_PLAIN_HOST " " + how);
}

TEST(ModuleLoad, WorksInEveryWayOfLoadingAndLeavesTheProcessAsItWas) {
    for (const char* const way : {"local", "global", "deepbind"})
        EXPECT_EQ(PlainHost(std::string(way) + " 33 " ORVA_MODULE_FILE), "") << way;
    EXPECT_EQ(PlainHost("local 1 " ORVA_MODULE_FILE, "LD_BIND_NOW=1"), "");
}

class ModuleCopies : public testing::Test {
protected:
    ModuleCopies() { std::filesystem::create_directory(folder); }
    ~ModuleCopies() override { std::filesystem::remove_all(folder); }
    std::string Copy(const std::filesystem::path& file, const char* name) const {
        std::filesystem::copy_file(file, folder / name);
        return (folder / name).string();
    }
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("orva_module_" + std::to_string(getpid()));
};

// A library of another name, so that the loader takes it for another.
TEST_F(ModuleCopies, LoadBesideAnotherLibraryOfTheLanguage) {
    Dl_info info{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&std::terminate), &info), 0);
    std::ifstream in(info.dli_fname, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(in), {});
    const std::string name = "libstdc++.so.6";
    const std::size_t at = bytes.find(name);
    ASSERT_NE(at, std::string::npos) << info.dli_fname;
    bytes.replace(at, name.size(), "libstdc++.so.X");
    const std::string other = (folder / "libstdc++.so.X").string();
    std::ofstream(other, std::ios::binary) << bytes;
    EXPECT_EQ(PlainHost("local 3 +" + other + " " ORVA_MODULE_FILE), "");
}

// Two plug-ins of the same make, visible to all, and a third library with the toolkit's symbols before or
// behind.
TEST_F(ModuleCopies, LiveSideBySideEachWithItsOwnToolkit) {
    const std::string one = Copy(ORVA_MODULE_FILE, "one.so"), two = Copy(ORVA_MODULE_FILE, "two.so");
    const std::string decoy = "+" ORVA_DECOY;
    for (const std::string& order :
         {one + " " + two, two + " " + one, decoy + " " + one + " " + two, decoy + " " + two + " " + one})
        EXPECT_EQ(PlainHost("global 25 " + order), "") << order;
}

#endif

using Entry = AEffect* (*)(audioMasterCallback);

class Module : public testing::Test {
protected:
    void SetUp() override {
        file = dlopen(ORVA_MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(file, nullptr) << dlerror();
    }
    void TearDown() override {
        if (file != nullptr) dlclose(file);
    }
    Entry Find(const char* name) const { return reinterpret_cast<Entry>(dlsym(file, name)); }

    void* file = nullptr;
};

TEST_F(Module, EachEntryPointOpensThePlugIn) {
    for (const char* name : {"VSTPluginMain", "MAIN", "main"}) {
        const Entry entry = Find(name);
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_EQ(entry(nullptr), nullptr);
        for (const std::intptr_t version : {0, 1, 2, 2300, 2400, 2401, -1}) {
            FakeHost host(version);
            host.unterminated = version == 1;  // texts without an end, too
            const Plug plug(entry(FakeHost::Callback));
            ASSERT_EQ(plug.effect != nullptr, version != 0) << version;
            if (version == 0) continue;
            EXPECT_EQ(plug.effect->magic, kEffectMagic);
            EXPECT_EQ(plug.effect->uniqueID, FourCharacters('O', 'R', 'V', '1'));
            EXPECT_EQ(plug.effect->numParams, 96);
            EXPECT_EQ(plug.effect->numInputs, 1);
            EXPECT_EQ(plug.effect->numOutputs, 1);
        }
    }
}

TEST_F(Module, TurnsASineIntoItsNote) {
    FakeHost host;
    Plug plug(Find("VSTPluginMain")(FakeHost::Callback));
    plug.Call(effOpen);
    plug.Call(effSetSampleRate, 0, 0, nullptr, 44100);
    plug.Call(effSetBlockSize, 0, 256);
    plug.Call(effMainsChanged, 0, 1);
    host.TakenEvents();
    std::vector<float> sine(22050);
    for (std::size_t i = 0; i < sine.size(); ++i)
        sine[i] =
            0.3F * static_cast<float>(std::sin(2 * std::numbers::pi * 440 / 44100 * static_cast<double>(i)));
    EXPECT_TRUE(plug.Play(host, sine, 256));
    EXPECT_TRUE(plug.Play(host, std::vector<float>(256), 256));
    const std::vector<FakeHost::Event> events = host.TakenEvents();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].data, std::string("\x90\x45\x64", 3));  // A 440 Hz, velocity 100
    EXPECT_EQ(events[1].data, std::string("\x80\x45\x00", 3));
    EXPECT_LT(std::abs(events[0].at), 882);  // dated back to the sine's begin, within two frames
    plug.Call(effMainsChanged, 0, 0);
}

std::size_t Entries(const char* folder) {
    const std::filesystem::directory_iterator listing(folder);
    return static_cast<std::size_t>(std::distance(begin(listing), end(listing)));
}

TEST_F(Module, LeavesNothingRunningOrOpenOverManyLives) {
    const auto live = [&] {
        FakeHost host;
        Plug plug(Find("main")(FakeHost::Callback));
        plug.Call(effOpen);
        plug.Play(host, std::vector<float>(640, 0.5F), 64);
    };
    live();
    const std::size_t files = Entries("/proc/self/fd"), threads = Entries("/proc/self/task");
    for (int life = 0; life < 50; ++life) {
        live();
        dlclose(file);
        SetUp();
    }
    EXPECT_EQ(Entries("/proc/self/fd"), files);
    EXPECT_EQ(Entries("/proc/self/task"), threads);
}

#if defined(__SSE2__)
// A module linked for fast arithmetic would set the loading thread's control word.
TEST(ModuleLoad, LeavesTheFloatControlWordAlone) {
    const unsigned before = _mm_getcsr();
    void* const file = dlopen(ORVA_MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(file, nullptr) << dlerror();
    EXPECT_EQ(_mm_getcsr() & ~0x3FU, before & ~0x3FU);  // but for the sticky flags
    dlclose(file);
}
#endif

}  // namespace
