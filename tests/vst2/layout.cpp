// Our records and numbers against those of headers that were written independently, from hosts and plug-ins
// in use. They know most of the interface, but not all of it.
#include <gtest/gtest.h>

#include <cstddef>

#include "vst2/records.h"
namespace fst {
#include <pluginterfaces/fst/fst.h>
}

namespace {

#define SAME_PLACE(record, field, otherRecord, otherField)                             \
    static_assert(offsetof(record, field) == offsetof(fst::otherRecord, otherField) && \
                  sizeof(record::field) == sizeof(decltype(fst::otherRecord::otherField)))

SAME_PLACE(AEffect, magic, AEffect, magic);
SAME_PLACE(AEffect, dispatcher, AEffect, dispatcher);
SAME_PLACE(AEffect, process, AEffect, process);
SAME_PLACE(AEffect, setParameter, AEffect, setParameter);
SAME_PLACE(AEffect, getParameter, AEffect, getParameter);
SAME_PLACE(AEffect, numPrograms, AEffect, numPrograms);
SAME_PLACE(AEffect, numParams, AEffect, numParams);
SAME_PLACE(AEffect, numInputs, AEffect, numInputs);
SAME_PLACE(AEffect, numOutputs, AEffect, numOutputs);
static_assert(offsetof(AEffect, flags) == offsetof(fst::AEffect, flags));  // theirs takes the padding in
SAME_PLACE(AEffect, resvd1, AEffect, resvd1);
SAME_PLACE(AEffect, resvd2, AEffect, resvd2);
SAME_PLACE(AEffect, initialDelay, AEffect, initialDelay);
SAME_PLACE(AEffect, ioRatio, AEffect, float1);
SAME_PLACE(AEffect, object, AEffect, object);
SAME_PLACE(AEffect, user, AEffect, user);
SAME_PLACE(AEffect, uniqueID, AEffect, uniqueID);
SAME_PLACE(AEffect, version, AEffect, version);
SAME_PLACE(AEffect, processReplacing, AEffect, processReplacing);
SAME_PLACE(AEffect, processDoubleReplacing, AEffect, processDoubleReplacing);
static_assert(sizeof(AEffect) == sizeof(fst::AEffect) + 56);  // bytes kept free at the end

SAME_PLACE(VstEvent, type, VstEvent, type);
SAME_PLACE(VstEvent, byteSize, VstEvent, byteSize);
SAME_PLACE(VstEvent, deltaFrames, VstEvent, deltaFrames);
SAME_PLACE(VstEvent, flags, VstEvent, flags);
SAME_PLACE(VstMidiEvent, type, VstMidiEvent, type);
SAME_PLACE(VstMidiEvent, byteSize, VstMidiEvent, byteSize);
SAME_PLACE(VstMidiEvent, deltaFrames, VstMidiEvent, deltaFrames);
SAME_PLACE(VstMidiEvent, flags, VstMidiEvent, flags);
SAME_PLACE(VstMidiEvent, midiData, VstMidiEvent, midiData);
static_assert(sizeof(VstMidiEvent) == sizeof(fst::VstMidiEvent));
SAME_PLACE(VstEvents, numEvents, VstEvents, numEvents);
static_assert(offsetof(VstEvents, events) == offsetof(fst::VstEvents, events));
SAME_PLACE(VstPinProperties, label, VstPinProperties, label);
SAME_PLACE(VstPinProperties, flags, VstPinProperties, flags);
SAME_PLACE(VstPinProperties, arrangementType, VstPinProperties, arrangementType);
SAME_PLACE(VstPinProperties, shortLabel, VstPinProperties, shortLabel);
SAME_PLACE(ERect, top, ERect, top);
SAME_PLACE(ERect, left, ERect, left);
SAME_PLACE(ERect, bottom, ERect, bottom);
SAME_PLACE(ERect, right, ERect, right);
static_assert(sizeof(ERect) == sizeof(fst::ERect));

TEST(Interface, NumbersAgreeWithTheOtherHeaders) {
    // clang-format off
#define ROW(name) {#name, static_cast<int>(name), static_cast<int>(fst::name)}
    const struct { const char* name; int ours; int theirs; } rows[] = {
        ROW(kEffectMagic), ROW(effFlagsHasEditor), ROW(effFlagsCanReplacing), ROW(effFlagsProgramChunks),
        ROW(effFlagsIsSynth), ROW(effFlagsNoSoundInStop), ROW(effFlagsCanDoubleReplacing),
        ROW(kPlugCategUnknown), ROW(kPlugCategEffect), ROW(kPlugCategSynth), ROW(kPlugCategAnalysis),
        ROW(kVstProcessPrecision32), ROW(kVstProcessPrecision64), ROW(kVstMidiType),
        ROW(audioMasterAutomate), ROW(audioMasterVersion), ROW(audioMasterWantMidi),
        ROW(audioMasterProcessEvents), ROW(audioMasterGetSampleRate), ROW(audioMasterGetVendorString),
        ROW(audioMasterGetProductString), ROW(audioMasterGetVendorVersion), ROW(audioMasterCanDo),
        ROW(effOpen), ROW(effClose), ROW(effSetProgram), ROW(effGetProgram), ROW(effSetProgramName),
        ROW(effGetProgramName), ROW(effGetParamLabel), ROW(effGetParamDisplay), ROW(effGetParamName),
        ROW(effSetSampleRate), ROW(effSetBlockSize), ROW(effMainsChanged), ROW(effEditGetRect),
        ROW(effEditOpen), ROW(effEditClose), ROW(effEditIdle), ROW(effIdentify), ROW(effGetChunk),
        ROW(effSetChunk), ROW(effProcessEvents), ROW(effCanBeAutomated), ROW(effString2Parameter),
        ROW(effGetProgramNameIndexed), ROW(effGetInputProperties), ROW(effGetOutputProperties),
        ROW(effGetPlugCategory), ROW(effSetSpeakerArrangement), ROW(effGetEffectName),
        ROW(effGetVendorString), ROW(effGetProductString), ROW(effGetVendorVersion), ROW(effVendorSpecific),
        ROW(effCanDo), ROW(effGetVstVersion), ROW(effGetCurrentMidiProgram), ROW(effGetSpeakerArrangement),
        ROW(effShellGetNextPlugin), ROW(effStartProcess), ROW(effStopProcess),
        ROW(effSetTotalSampleToProcess), ROW(effSetProcessPrecision),
    };
#undef ROW
    // clang-format on
    for (const auto& row : rows) EXPECT_EQ(row.ours, row.theirs) << row.name;
}

}  // namespace
