#include "vst3/factory.h"

#include <new>

#include "pluginterfaces/base/funknownimpl.h"
#include "vst3/plugin.h"

using namespace Steinberg;  // NOLINT(google-build-using-namespace)

namespace {

// Projects find the plug-in by it, so it never changes.
const FUID classId(0x5C0B1D0A, 0x6F0E4C52, 0x93A16F72, 0x76612D31);
constexpr char vendor[] = "ORVASOFT", name[] = "ORVA Audio To MIDI";

class Factory final
    : public U::ImplementsNonDestroyable<U::Directly<IPluginFactory2>, U::Indirectly<IPluginFactory>> {
public:
    tresult PLUGIN_API getFactoryInfo(PFactoryInfo* info) override {
        *info = {vendor, "http://www.orva-labs.example/", "support@orva-labs.example",
                 PFactoryInfo::kUnicode};
        return kResultOk;
    }
    int32 PLUGIN_API countClasses() override { return 1; }
    tresult PLUGIN_API getClassInfo(int32 index, PClassInfo* info) override {
        if (index != 0) return kInvalidArgument;
        *info = {classId.toTUID(), PClassInfo::kManyInstances, kVstAudioEffectClass, name};
        return kResultOk;
    }
    tresult PLUGIN_API getClassInfo2(int32 index, PClassInfo2* info) override {
        if (index != 0) return kInvalidArgument;
        *info = {classId.toTUID(),
                 PClassInfo::kManyInstances,
                 kVstAudioEffectClass,
                 name,
                 0,
                 Vst::PlugType::kFxAnalyzer,
                 vendor,
                 ORVA_VERSION,
                 kVstVersionString};
        return kResultOk;
    }
    tresult PLUGIN_API createInstance(FIDString id, FIDString interface, void** object) override {
        *object = nullptr;
        if (!FUnknownPrivate::iidEqual(id, classId.toTUID())) return kInvalidArgument;
        auto* const made = new (std::nothrow) Vst3Plugin;
        if (made == nullptr) return kOutOfMemory;
        const tresult result = made->unknownCast()->queryInterface(interface, object);
        made->release();  // the interface holds it
        return result;
    }
};

}  // namespace

IPluginFactory* Vst3Factory() {
    static Factory& factory = *new Factory;
    return &factory;
}
