// What bash offers, and the listing of what --for sets.
#include <gtest/gtest.h>

#include <cstdio>

#include "run_host.h"

namespace {

std::string Offered(const std::string& words) {  // the last one is being typed
    const std::string script = "bash -c 'source " ORVA_COMPLETION "; COMP_WORDS=(" ORVA_HOST_PROGRAM " " +
                               words + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _orva_host " +
                               ORVA_HOST_PROGRAM "; echo ${COMPREPLY[*]}'";
    std::string text(256, '\0');
    FILE* const out = popen(script.c_str(), "r");
    text.resize(out != nullptr ? fread(text.data(), 1, text.size(), out) : 0);
    if (out != nullptr) pclose(out);
    return text;
}

}  // namespace

TEST(Completion, OffersCommandsOptionsAndInstruments) {
    EXPECT_EQ(Offered("re"), "render\n");
    EXPECT_EQ(Offered("render --me"), "--meter\n");
    EXPECT_EQ(Offered("info --js"), "--json\n");
    EXPECT_EQ(Offered("live --for b"), "bass\n");
    EXPECT_EQ(Offered("render a"), "\n");  // files are the shell's
}

// A heading, polyphony, sensitivity and 84 bars.
TEST(Info, ListsWhatAnInstrumentSets) {
    const Ended listed = RunHost({"info", "--for", "bass"});
    EXPECT_EQ(listed.code, 0) << listed.err;
    EXPECT_EQ(Lines(listed.out), 1 + 2 + 84);
    EXPECT_TRUE(Contains(listed.out, "1  Sensitivity         0.875  -35 dB\n")) << listed.out.substr(0, 200);
    EXPECT_EQ(RunHost({"info", "--for", "kazoo"}).code, 2);
}
