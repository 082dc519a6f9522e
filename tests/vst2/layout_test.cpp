// Our records and numbers against headers that were written independently, and know most of the interface.
#include "tests/support/test.h"
#include "vst2/records.h"
namespace fst {
#include <pluginterfaces/fst/fst.h>
}

namespace {

// clang-format off
#define SAME_AS(record, field, theirs, theirField)                            \
    static_assert(offsetof(record, field) == offsetof(fst::theirs, theirField) && \
                  sizeof(record::field) == sizeof(decltype(fst::theirs::theirField)))
#define SAME(record, field) SAME_AS(record, field, record, field)

SAME(AEffect, magic);         SAME(AEffect, dispatcher);        SAME(AEffect, process);
SAME(AEffect, setParameter);  SAME(AEffect, getParameter);      SAME(AEffect, numPrograms);
SAME(AEffect, numParams);     SAME(AEffect, numInputs);         SAME(AEffect, numOutputs);
SAME(AEffect, resvd1);        SAME(AEffect, resvd2);            SAME(AEffect, initialDelay);
SAME(AEffect, object);        SAME(AEffect, user);              SAME_AS(AEffect, ioRatio, AEffect, float1);
SAME(AEffect, uniqueID);      SAME(AEffect, version);
SAME(AEffect, processReplacing);  SAME(AEffect, processDoubleReplacing);
static_assert(offsetof(AEffect, flags) == offsetof(fst::AEffect, flags));  // theirs takes the padding in
static_assert(sizeof(AEffect) == sizeof(fst::AEffect) + 56);               // bytes kept free at the end
SAME(VstMidiEvent, type);         SAME(VstMidiEvent, byteSize);  SAME(VstMidiEvent, midiData);
SAME(VstMidiEvent, deltaFrames);  SAME(VstMidiEvent, flags);
static_assert(sizeof(VstMidiEvent) == sizeof(fst::VstMidiEvent));
static_assert(offsetof(VstEvents, events) == offsetof(fst::VstEvents, events));
SAME(ERect, top);  SAME(ERect, left);  SAME(ERect, bottom);  SAME(ERect, right);
// clang-format on

TEST(Interface, NumbersAgreeWithTheOtherHeaders) {
    // clang-format off
#define ROW(name) {#name, static_cast<int>(name), static_cast<int>(fst::name)}
    const struct { const char* name; int ours; int theirs; } rows[] = {
        ROW(kEffectMagic), ROW(effFlagsHasEditor), ROW(effFlagsCanReplacing), ROW(effFlagsIsSynth),
        ROW(effFlagsCanDoubleReplacing), ROW(kPlugCategAnalysis), ROW(kVstMidiType), ROW(audioMasterAutomate),
        ROW(audioMasterVersion), ROW(audioMasterWantMidi), ROW(audioMasterProcessEvents),
        ROW(audioMasterSizeWindow),
        ROW(audioMasterGetSampleRate), ROW(audioMasterGetVendorString), ROW(audioMasterGetProductString),
        ROW(audioMasterCanDo), ROW(effOpen), ROW(effClose), ROW(effGetProgramName), ROW(effGetParamLabel),
        ROW(effGetParamDisplay), ROW(effGetParamName), ROW(effSetSampleRate), ROW(effSetBlockSize),
        ROW(effMainsChanged), ROW(effEditGetRect), ROW(effEditOpen), ROW(effEditClose), ROW(effEditIdle),
        ROW(effCanBeAutomated), ROW(effString2Parameter), ROW(effGetPlugCategory), ROW(effGetEffectName),
        ROW(effGetVendorString), ROW(effGetProductString), ROW(effGetVendorVersion), ROW(effVendorSpecific),
        ROW(effCanDo), ROW(effGetVstVersion), ROW(effSetProcessPrecision)};
    // clang-format on
    for (const auto& row : rows) EXPECT_EQ(row.ours, row.theirs) << row.name;
}

}  // namespace
