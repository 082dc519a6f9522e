// The module's file: what it exports, how it is linked, and that a host can load it and play.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#include "tests/plugin/fake_host.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// What a program of the linker's family says of the module.
std::string Told(const std::string& program) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen((program + " " ORVA_MODULE_FILE).c_str(), "r"),
                                                     pclose);
    std::string text;
    std::array<char, 4096> part{};
    while (pipe != nullptr && std::fgets(part.data(), part.size(), pipe.get()) != nullptr)
        text += part.data();
    return text;
}

TEST(ModuleFile, ExportsTheThreeEntryPointsAndNothingElse) {
    std::istringstream lines(Told("nm -D --defined-only"));
    std::vector<std::string> names;
    for (std::string address, kind, name; lines >> address >> kind >> name;)
        names.push_back(kind + " " + name);
    EXPECT_THAT(names, testing::UnorderedElementsAre("T MAIN", "T VSTPluginMain", "T main"));
}

// Unique symbols would be shared with another plug-in's copy, and keep the file from ever being unloaded.
TEST(ModuleFile, SharesNoSymbolWithOtherModules) {
    const std::string symbols = Told("readelf -Ws");
    EXPECT_THAT(symbols, HasSubstr("VSTPluginMain"));
    EXPECT_THAT(symbols, Not(HasSubstr(" UNIQUE ")));
}

TEST(ModuleFile, IsBoundAtLoadAndReadOnlyFromThenOn) {
    const std::string segments = Told("readelf -lWd");
    EXPECT_THAT(segments, HasSubstr("GNU_RELRO"));
    EXPECT_THAT(segments, testing::ContainsRegex("BIND_NOW|FLAGS_1.*NOW"));
    EXPECT_THAT(segments, testing::ContainsRegex("FLAGS_1.*NODELETE"));
    EXPECT_THAT(segments, testing::ContainsRegex("GNU_STACK[ 0-9a-fx]*RW "));
    EXPECT_THAT(segments, Not(HasSubstr("TEXTREL")));
    EXPECT_THAT(segments, Not(testing::ContainsRegex("RUNPATH|RPATH")));
}

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
