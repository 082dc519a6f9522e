#pragma once
#include <cstdint>

// The published binary interface between a VST 2.4 host and a plug-in: record layouts, opcodes, flags.
// Layouts are fixed by the hosts in use and may not change; sizes are those of 64-bit systems.

struct AEffect;

// What the host hands to the entry point; the plug-in calls it for everything it wants of the host.
using audioMasterCallback = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                              std::intptr_t value, void* ptr, float opt);

using AEffectDispatcherProc = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                                std::intptr_t value, void* ptr, float opt);
using AEffectProcessProc = void (*)(AEffect* effect, float** inputs, float** outputs, std::int32_t frames);
using AEffectProcessDoubleProc = void (*)(AEffect* effect, double** inputs, double** outputs,
                                          std::int32_t frames);
using AEffectSetParameterProc = void (*)(AEffect* effect, std::int32_t index, float value);
using AEffectGetParameterProc = float (*)(AEffect* effect, std::int32_t index);

constexpr std::int32_t FourCharacters(char a, char b, char c, char d) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<unsigned char>(a)) << 24 |
                                     static_cast<std::uint32_t>(static_cast<unsigned char>(b)) << 16 |
                                     static_cast<std::uint32_t>(static_cast<unsigned char>(c)) << 8 |
                                     static_cast<std::uint32_t>(static_cast<unsigned char>(d)));
}

constexpr std::int32_t kEffectMagic = FourCharacters('V', 's', 't', 'P');

// The record that stands for one plug-in instance. The host reads it and calls through it.
struct AEffect {
    std::int32_t magic = kEffectMagic;
    AEffectDispatcherProc dispatcher = nullptr;
    AEffectProcessProc process = nullptr;  // the older, accumulating call
    AEffectSetParameterProc setParameter = nullptr;
    AEffectGetParameterProc getParameter = nullptr;
    std::int32_t numPrograms = 0;
    std::int32_t numParams = 0;
    std::int32_t numInputs = 0;
    std::int32_t numOutputs = 0;
    std::int32_t flags = 0;    // effFlags...
    std::intptr_t resvd1 = 0;  // the host's
    std::intptr_t resvd2 = 0;  // the host's
    std::int32_t initialDelay = 0;
    std::int32_t realQualities = 0;
    std::int32_t offQualities = 0;
    float ioRatio = 1.0F;
    void* object = nullptr;  // the AudioEffect behind this record
    void* user = nullptr;
    std::int32_t uniqueID = 0;
    std::int32_t version = 0;
    AEffectProcessProc processReplacing = nullptr;
    AEffectProcessDoubleProc processDoubleReplacing = nullptr;
    char future[56] = {};
};

enum VstAEffectFlags : std::int32_t {
    effFlagsHasEditor = 1 << 0,
    effFlagsCanMono = 1 << 3,
    effFlagsCanReplacing = 1 << 4,
    effFlagsProgramChunks = 1 << 5,
    effFlagsIsSynth = 1 << 8,
    effFlagsNoSoundInStop = 1 << 9,
    effFlagsCanDoubleReplacing = 1 << 12,
};

// What a host asks of a plug-in, by dispatcher.
enum AEffectOpcodes : std::int32_t {
    effOpen = 0,
    effClose = 1,
    effSetProgram = 2,
    effGetProgram = 3,
    effSetProgramName = 4,
    effGetProgramName = 5,
    effGetParamLabel = 6,
    effGetParamDisplay = 7,
    effGetParamName = 8,
    effGetVu = 9,
    effSetSampleRate = 10,
    effSetBlockSize = 11,
    effMainsChanged = 12,
    effEditGetRect = 13,
    effEditOpen = 14,
    effEditClose = 15,
    effEditDraw = 16,
    effEditMouse = 17,
    effEditKey = 18,
    effEditIdle = 19,
    effEditTop = 20,
    effEditSleep = 21,
    effIdentify = 22,
    effGetChunk = 23,
    effSetChunk = 24,
    effProcessEvents = 25,
    effCanBeAutomated = 26,
    effString2Parameter = 27,
    effGetNumProgramCategories = 28,
    effGetProgramNameIndexed = 29,
    effCopyProgram = 30,
    effConnectInput = 31,
    effConnectOutput = 32,
    effGetInputProperties = 33,
    effGetOutputProperties = 34,
    effGetPlugCategory = 35,
    effGetCurrentPosition = 36,
    effGetDestinationBuffer = 37,
    effOfflineNotify = 38,
    effOfflinePrepare = 39,
    effOfflineRun = 40,
    effProcessVarIo = 41,
    effSetSpeakerArrangement = 42,
    effSetBlockSizeAndSampleRate = 43,
    effSetBypass = 44,
    effGetEffectName = 45,
    effGetErrorText = 46,
    effGetVendorString = 47,
    effGetProductString = 48,
    effGetVendorVersion = 49,
    effVendorSpecific = 50,
    effCanDo = 51,
    effGetTailSize = 52,
    effIdle = 53,
    effGetIcon = 54,
    effSetViewPosition = 55,
    effGetParameterProperties = 56,
    effKeysRequired = 57,
    effGetVstVersion = 58,
    effEditKeyDown = 59,
    effEditKeyUp = 60,
    effSetEditKnobMode = 61,
    effGetMidiProgramName = 62,
    effGetCurrentMidiProgram = 63,
    effGetMidiProgramCategory = 64,
    effHasMidiProgramsChanged = 65,
    effGetMidiKeyName = 66,
    effBeginSetProgram = 67,
    effEndSetProgram = 68,
    effGetSpeakerArrangement = 69,
    effShellGetNextPlugin = 70,
    effStartProcess = 71,
    effStopProcess = 72,
    effSetTotalSampleToProcess = 73,
    effSetPanLaw = 74,
    effBeginLoadBank = 75,
    effBeginLoadProgram = 76,
    effSetProcessPrecision = 77,
    effGetNumMidiInputChannels = 78,
    effGetNumMidiOutputChannels = 79,
};

// What a plug-in asks of its host, by callback. Only the calls that this plug-in makes.
enum AudioMasterOpcodes : std::int32_t {
    audioMasterAutomate = 0,
    audioMasterVersion = 1,
    audioMasterWantMidi = 6,
    audioMasterProcessEvents = 8,
    audioMasterSizeWindow = 15,
    audioMasterGetSampleRate = 16,
    audioMasterGetVendorString = 32,
    audioMasterGetProductString = 33,
    audioMasterGetVendorVersion = 34,
    audioMasterCanDo = 37,
    audioMasterUpdateDisplay = 42,
};

enum VstPlugCategory : std::int32_t {
    kPlugCategUnknown = 0,
    kPlugCategEffect = 1,
    kPlugCategSynth = 2,
    kPlugCategAnalysis = 3
};

enum VstProcessPrecision : std::int32_t { kVstProcessPrecision32 = 0, kVstProcessPrecision64 = 1 };

// Bytes that the interface grants a text, terminator included. Hosts reserve more for names and displays.
constexpr int kVstMaxProgNameLen = 32;
constexpr int kVstMaxEffectNameLen = 32;
constexpr int kVstMaxVendorStrLen = 64;
constexpr int kVstMaxProductStrLen = 64;

// One event of any kind; its type says which record it really is.
struct VstEvent {
    std::int32_t type = 0;
    std::int32_t byteSize = 0;
    std::int32_t deltaFrames = 0;
    std::int32_t flags = 0;
    char data[16] = {};
};

enum VstEventTypes : std::int32_t { kVstMidiType = 1 };

struct VstMidiEvent {
    std::int32_t type = kVstMidiType;
    std::int32_t byteSize = 24;    // of what follows these two words, as the published record has it
    std::int32_t deltaFrames = 0;  // samples from the start of the block in progress
    std::int32_t flags = 0;
    std::int32_t noteLength = 0;
    std::int32_t noteOffset = 0;
    char midiData[4] = {};
    char detune = 0;
    char noteOffVelocity = 0;
    char reserved1 = 0;
    char reserved2 = 0;
};

struct VstEvents {
    std::int32_t numEvents = 0;
    std::intptr_t reserved = 0;
    VstEvent* events[2] = {};  // really numEvents pointers
};

struct ERect {
    std::int16_t top = 0;
    std::int16_t left = 0;
    std::int16_t bottom = 0;
    std::int16_t right = 0;
};

// A key as the host hands it to the editor.
struct VstKeyCode {
    std::int32_t character = 0;
    unsigned char virt = 0;      // VKEY_..., 0 for a plain character
    unsigned char modifier = 0;  // bits: shift 1, alternate 2, command 4, control 8
};

enum VstVirtualKey : unsigned char { VKEY_F1 = 40 };

struct VstPinProperties {
    char label[64] = {};
    std::int32_t flags = 0;
    std::int32_t arrangementType = 0;
    char shortLabel[8] = {};
    char future[48] = {};
};

static_assert(sizeof(VstEvent) == 32 && sizeof(VstMidiEvent) == 32);
static_assert(sizeof(VstPinProperties) == 128);
static_assert(sizeof(void*) != 8 || sizeof(AEffect) == 192);
