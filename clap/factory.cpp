#include "clap/factory.h"

#include <cstring>
#include <exception>

#include "base/text.h"
#include "clap/plugin.h"
#include "hosting/parameter_scale.h"

namespace {

const char* const features[] = {"audio-effect", "note-detector", "analyzer", "mono", nullptr};

const clap_plugin_descriptor_t descriptor = {
    CLAP_VERSION,
    "example.orva-labs.orva",
    "ORVA Audio To MIDI",
    "ORVASOFT",
    "http://www.orva-labs.example/",
    "",
    "",
    ORVA_VERSION,
    "Hears notes, several at once, and sends them on as MIDI.",
    features,
};

// --- the record's calls ---

ClapPlugin& Of(const clap_plugin_t* plugin) {
    return *static_cast<ClapPlugin*>(plugin->plugin_data);
}

// An exception ends in the answer that says "no", and so does a call before init.
template <typename Answer, typename Call>
Answer Guarded(const clap_plugin_t* plugin, Answer failed, Call call) noexcept {
    try {
        return Of(plugin).IsReady() ? call(Of(plugin)) : failed;
    } catch (const std::exception&) {
        return failed;
    }
}
template <typename Call>
void Guarded(const clap_plugin_t* plugin, Call call) noexcept {
    Guarded(plugin, false, [&](ClapPlugin& self) { return call(self), true; });
}

bool Init(const clap_plugin_t* plugin) {
    try {
        return Of(plugin).Init();
    } catch (const std::exception&) {
        return false;
    }
}

bool Is(const char* id, const char* name) {
    return id != nullptr && std::strcmp(id, name) == 0;
}

// --- ports, latency, rendering ---

const clap_plugin_audio_ports_t audioPorts = {
    [](const clap_plugin_t*, bool) -> std::uint32_t { return 1; },
    [](const clap_plugin_t*, std::uint32_t index, bool isInput, clap_audio_port_info_t* info) {
        if (index != 0) return false;
        *info = {};
        CopyText(info->name, sizeof info->name, isInput ? "Input" : "Output");
        info->flags = CLAP_AUDIO_PORT_IS_MAIN | CLAP_AUDIO_PORT_SUPPORTS_64BITS |
                      CLAP_AUDIO_PORT_REQUIRES_COMMON_SAMPLE_SIZE;
        info->channel_count = 1;
        info->port_type = CLAP_PORT_MONO;
        info->in_place_pair = 0;
        return true;
    },
};

const clap_plugin_note_ports_t notePorts = {
    [](const clap_plugin_t* plugin, bool isInput) -> std::uint32_t {
        return !isInput || Of(plugin).NeedsNoteInput() ? 1 : 0;
    },
    [](const clap_plugin_t* plugin, std::uint32_t index, bool isInput, clap_note_port_info_t* info) {
        if (index != 0 || (isInput && !Of(plugin).NeedsNoteInput())) return false;
        *info = {};
        info->id = isInput ? 1 : 0;
        info->supported_dialects = info->preferred_dialect = CLAP_NOTE_DIALECT_MIDI;
        CopyText(info->name, sizeof info->name, "MIDI");
        return true;
    },
};

const clap_plugin_latency_t latency = {[](const clap_plugin_t*) -> std::uint32_t { return 0; }};

const clap_plugin_render_t render = {[](const clap_plugin_t*) { return false; },
                                     [](const clap_plugin_t*, std::int32_t) { return true; }};

// --- parameters and state ---

bool DescribeParameter(std::uint32_t number, clap_param_info_t& info) {
    if (number >= parameterCount) return false;
    const auto index = static_cast<std::int32_t>(number);
    info = {};
    info.id = number;
    if (ParameterSteps(index) > 0) info.flags |= CLAP_PARAM_IS_STEPPED;
    if (FindParameter(index)->kind == ParameterKind::choice) info.flags |= CLAP_PARAM_IS_ENUM;
    if (FindParameter(index)->kind == ParameterKind::page) info.flags |= CLAP_PARAM_IS_HIDDEN;
    if (IsAutomatable(index)) info.flags |= CLAP_PARAM_IS_AUTOMATABLE;
    CopyText(info.name, sizeof info.name, ParameterName(index));
    info.max_value = PlainMaximum(index);
    info.default_value = static_cast<double>(ParameterInitialValue(index)) * PlainMaximum(index);
    return true;
}

const clap_plugin_params_t params = {
    [](const clap_plugin_t*) -> std::uint32_t { return parameterCount; },
    [](const clap_plugin_t* plugin, std::uint32_t index, clap_param_info_t* info) {
        return Guarded(plugin, false, [&](ClapPlugin&) { return DescribeParameter(index, *info); });
    },
    [](const clap_plugin_t* plugin, clap_id id, double* value) {
        return Guarded(plugin, false, [&](ClapPlugin& self) { return self.GetParameter(id, *value); });
    },
    [](const clap_plugin_t* plugin, clap_id id, double value, char* text, std::uint32_t size) {
        return Guarded(plugin, false,
                       [&](ClapPlugin& self) { return self.ShowParameter(id, value, text, size); });
    },
    [](const clap_plugin_t* plugin, clap_id id, const char* text, double* value) {
        return Guarded(plugin, false, [&](ClapPlugin& self) { return self.ReadParameter(id, text, *value); });
    },
    [](const clap_plugin_t* plugin, const clap_input_events_t* in, const clap_output_events_t* out) {
        Guarded(plugin, [&](ClapPlugin& self) { self.Flush(in, out); });
    },
};

const clap_plugin_state_t state = {
    [](const clap_plugin_t* plugin, const clap_ostream_t* stream) {
        return Guarded(plugin, false, [&](ClapPlugin& self) { return self.Save(*stream); });
    },
    [](const clap_plugin_t* plugin, const clap_istream_t* stream) {
        return Guarded(plugin, false, [&](ClapPlugin& self) { return self.Load(*stream); });
    },
};

// --- the window ---

template <typename Call>
bool InWindow(const clap_plugin_t* plugin, Call call) {
    return Guarded(plugin, false, [&](ClapPlugin& self) { return self.MayTouchWindow() && call(self); });
}

bool CanShow(const char* api, bool isFloating) {
    return !isFloating && Is(api, CLAP_WINDOW_API_X11);
}
bool Size(const clap_plugin_t* plugin, std::uint32_t* width, std::uint32_t* height) {
    return InWindow(plugin, [&](ClapPlugin& self) { return self.WindowSize(*width, *height), true; });
}

const clap_plugin_gui_t gui = {
    [](const clap_plugin_t*, const char* api, bool isFloating) { return CanShow(api, isFloating); },
    [](const clap_plugin_t*, const char** api, bool* isFloating) {
        *api = CLAP_WINDOW_API_X11;
        *isFloating = false;
        return true;
    },
    [](const clap_plugin_t* plugin, const char* api, bool isFloating) {
        return CanShow(api, isFloating) &&
               InWindow(plugin, [](ClapPlugin& self) { return self.MakeWindow(); });
    },
    [](const clap_plugin_t* plugin) {
        InWindow(plugin, [](ClapPlugin& self) { return self.EndWindow(), true; });
    },
    [](const clap_plugin_t* plugin, double scale) {
        return InWindow(plugin, [&](ClapPlugin& self) { return self.SetScale(scale); });
    },
    Size,
    [](const clap_plugin_t*) { return false; },
    [](const clap_plugin_t*, void*) { return false; },
    Size,
    [](const clap_plugin_t* plugin, std::uint32_t width, std::uint32_t height) {
        std::uint32_t ownWidth = 0, ownHeight = 0;
        return Size(plugin, &ownWidth, &ownHeight) && width == ownWidth && height == ownHeight;
    },
    [](const clap_plugin_t* plugin, const clap_window_t* window) {
        return CanShow(window->api, false) && InWindow(plugin, [&](ClapPlugin& self) {
                   return self.SetParent(static_cast<std::uint32_t>(window->x11));
               });
    },
    [](const clap_plugin_t*, const clap_window_t*) { return false; },
    [](const clap_plugin_t*, const char*) {},
    [](const clap_plugin_t* plugin) {
        return InWindow(plugin, [](ClapPlugin& self) { return self.ShowWindow(); });
    },
    [](const clap_plugin_t* plugin) {
        return InWindow(plugin, [](ClapPlugin& self) { return self.HideWindow(); });
    },
};

const clap_plugin_timer_support_t timers = {[](const clap_plugin_t* plugin, clap_id) {
    InWindow(plugin, [](ClapPlugin& self) { return self.Idle(), true; });
}};
const clap_plugin_posix_fd_support_t descriptors = {[](const clap_plugin_t* plugin, int, std::uint32_t) {
    InWindow(plugin, [](ClapPlugin& self) { return self.Idle(), true; });
}};

const void* Extension(const clap_plugin_t*, const char* id) {
    constexpr struct {
        const char* id;
        const void* calls;
    } all[] = {
        {CLAP_EXT_AUDIO_PORTS, &audioPorts},
        {CLAP_EXT_NOTE_PORTS, &notePorts},
        {CLAP_EXT_PARAMS, &params},
        {CLAP_EXT_STATE, &state},
        {CLAP_EXT_LATENCY, &latency},
        {CLAP_EXT_RENDER, &render},
        {CLAP_EXT_GUI, &gui},
        {CLAP_EXT_TIMER_SUPPORT, &timers},
        {CLAP_EXT_POSIX_FD_SUPPORT, &descriptors},
    };
    for (const auto& extension : all)
        if (Is(id, extension.id)) return extension.calls;
    return nullptr;
}

const clap_plugin_t calls = {
    &descriptor,
    nullptr,
    Init,
    [](const clap_plugin_t* plugin) { delete &Of(plugin); },
    [](const clap_plugin_t* plugin, double rate, std::uint32_t, std::uint32_t) {
        return Guarded(plugin, false, [&](ClapPlugin& self) { return self.Activate(rate); });
    },
    [](const clap_plugin_t* plugin) { Guarded(plugin, [](ClapPlugin& self) { self.Deactivate(); }); },
    [](const clap_plugin_t* plugin) {
        return Guarded(plugin, false, [](ClapPlugin& self) { return self.IsActive(); });
    },
    [](const clap_plugin_t*) {},
    [](const clap_plugin_t* plugin) { Guarded(plugin, [](ClapPlugin& self) { self.Reset(); }); },
    [](const clap_plugin_t* plugin, const clap_process_t* block) {
        return Guarded(plugin, CLAP_PROCESS_ERROR, [&](ClapPlugin& self) { return self.Process(*block); });
    },
    Extension,
    [](const clap_plugin_t*) {},
};

const clap_plugin_t* Create(const clap_plugin_factory_t*, const clap_host_t* host, const char* id) {
    if (host == nullptr || host->clap_version.major < 1 || !Is(id, descriptor.id)) return nullptr;
    try {
        return &(new ClapPlugin(calls, *host))->Record();  // its destroy deletes it
    } catch (const std::exception&) {
        return nullptr;
    }
}

const clap_plugin_factory_t factory = {
    [](const clap_plugin_factory_t*) -> std::uint32_t { return 1; },
    [](const clap_plugin_factory_t*, std::uint32_t index) { return index == 0 ? &descriptor : nullptr; },
    Create,
};

}  // namespace

const void* ClapFactory(const char* id) {
    return Is(id, CLAP_PLUGIN_FACTORY_ID) ? &factory : nullptr;
}
