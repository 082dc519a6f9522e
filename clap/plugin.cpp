#include "clap/plugin.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/text.h"
#include "hosting/parameter_scale.h"

namespace {

template <typename Event>
Event MakeEvent(std::uint16_t type, std::uint32_t frame = 0) {
    Event event{};
    event.header = {sizeof event, frame, CLAP_CORE_EVENT_SPACE_ID, type, 0};
    return event;
}

// The first channel of the first port; null where there is none.
template <typename Sample>
Sample* FirstChannel(Sample** channels, std::uint32_t count) {
    return channels != nullptr && count > 0 ? channels[0] : nullptr;
}

bool IsParameter(clap_id id) {
    return id < parameterCount;
}

}  // namespace

ClapPlugin::ClapPlugin(const clap_plugin_t& calls, const clap_host_t& newHost)
    : record([&] {
          clap_plugin_t made = calls;
          made.plugin_data = this;
          return made;
      }()),
      host(newHost) {}

ClapPlugin::~ClapPlugin() {
    EndWindow();
}

bool ClapPlugin::NeedsNoteInput() const {
    return host.name != nullptr && std::strcmp(host.name, "qtractorClapPlugin") == 0;  // run, version 0.9.31
}

bool ClapPlugin::Init() {
    if (session != nullptr) return false;
    hostParams = Find<clap_host_params_t>(CLAP_EXT_PARAMS);
    threads = Find<clap_host_thread_check_t>(CLAP_EXT_THREAD_CHECK);
    ISessionListener& listener = *this;
    session = std::make_unique<SessionInstance>(listener);
    return true;
}

bool ClapPlugin::Activate(double rate) {
    if (session->IsActive()) return false;
    session->SetRate(rate);
    session->SetActive(true);
    return true;
}

void ClapPlugin::Reset() {
    if (!session->IsActive()) return;
    session->SetActive(false);
    session->SetActive(true);
}

clap_process_status ClapPlugin::Process(const clap_process_t& block) {
    if (!session->IsActive()) return CLAP_PROCESS_ERROR;
    HostedInstance& hosted = session->Hosted();
    hosted.BeginRun(block.frames_count);
    TakeParameters(block.in_events);
    GiveParameters(block.out_events);  // at frame 0, before all notes

    const clap_audio_buffer_t none{};
    const clap_audio_buffer_t& in = block.audio_inputs_count > 0 ? *block.audio_inputs : none;
    clap_audio_buffer_t unheard{};
    clap_audio_buffer_t& out = block.audio_outputs_count > 0 ? *block.audio_outputs : unheard;
    if (in.data64 != nullptr || out.data64 != nullptr)
        hosted.Process<double>(FirstChannel(in.data64, in.channel_count),
                               FirstChannel(out.data64, out.channel_count));
    else
        hosted.Process<float>(FirstChannel(in.data32, in.channel_count),
                              FirstChannel(out.data32, out.channel_count));
    out.constant_mask = in.constant_mask;

    hosted.EndRun([&](std::uint32_t frame, std::uint32_t message) {
        auto event = MakeEvent<clap_event_midi_t>(CLAP_EVENT_MIDI, frame);
        for (int byte = 0; byte < 3; ++byte)
            event.data[byte] = static_cast<std::uint8_t>(message >> 8 * byte);
        return block.out_events == nullptr || block.out_events->try_push(block.out_events, &event.header);
    });
    return CLAP_PROCESS_CONTINUE;
}

// --- parameters ---

bool ClapPlugin::GetParameter(clap_id id, double& value) {
    if (!IsParameter(id)) return false;
    const auto index = static_cast<std::int32_t>(id);
    value = session->Scaled(index, session->Parameter(index)) * PlainMaximum(index);
    return true;
}

bool ClapPlugin::ShowParameter(clap_id id, double value, char* text, std::uint32_t size) {
    if (!IsParameter(id)) return false;
    const auto index = static_cast<std::int32_t>(id);
    CopyText(text, size, ParameterDisplay(index, session->Unscaled(index, value / PlainMaximum(index))));
    return true;
}

bool ClapPlugin::ReadParameter(clap_id id, const char* text, double& value) {
    const auto index = static_cast<std::int32_t>(id);
    float read = 0;
    if (!IsParameter(id) || text == nullptr || !ReadParameterText(index, text, read)) return false;
    value = session->Scaled(index, read) * PlainMaximum(index);
    return true;
}

void ClapPlugin::Flush(const clap_input_events_t* in, const clap_output_events_t* out) {
    TakeParameters(in);
    GiveParameters(out);
}

void ClapPlugin::TakeParameters(const clap_input_events_t* events) {
    const std::uint32_t count = events != nullptr ? events->size(events) : 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const clap_event_header_t* const head = events->get(events, i);
        if (head == nullptr || head->space_id != CLAP_CORE_EVENT_SPACE_ID ||
            head->type != CLAP_EVENT_PARAM_VALUE)
            continue;
        const auto& event = *reinterpret_cast<const clap_event_param_value_t*>(head);
        if (!IsParameter(event.param_id)) continue;
        const auto index = static_cast<std::int32_t>(event.param_id);
        session->Set(index, session->Unscaled(index, event.value / PlainMaximum(index)));
    }
}

void ClapPlugin::GiveParameters(const clap_output_events_t* events) {
    if (events == nullptr) return;
    Mailbox& changes = session->Hosted().ChangesForHost();
    changes.drain([&](std::int32_t index, float value) {
        auto begin = MakeEvent<clap_event_param_gesture_t>(CLAP_EVENT_PARAM_GESTURE_BEGIN);
        auto change = MakeEvent<clap_event_param_value_t>(CLAP_EVENT_PARAM_VALUE);
        begin.param_id = change.param_id = static_cast<clap_id>(index);
        change.note_id = change.port_index = change.channel = change.key = -1;
        change.value = session->Scaled(index, value) * PlainMaximum(index);
        auto end = begin;
        end.header.type = CLAP_EVENT_PARAM_GESTURE_END;
        for (const clap_event_header_t* event : {&begin.header, &change.header, &end.header})
            if (!events->try_push(events, event)) return changes.post(index, session->Parameter(index));
    });
}

void ClapPlugin::ChangedInside(std::int32_t, float) {
    if (hostParams != nullptr) hostParams->request_flush(&host);
}

// --- state ---

bool ClapPlugin::Save(const clap_ostream_t& stream) {
    const SessionInstance::State state = session->Save();
    for (std::size_t done = 0; done < state.size();) {
        const std::int64_t written = stream.write(&stream, &state[done], state.size() - done);
        if (written <= 0) return false;
        done += static_cast<std::size_t>(written);
    }
    return true;
}

bool ClapPlugin::Load(const clap_istream_t& stream) {
    SessionInstance::State state;
    std::uint8_t more = 0;
    for (std::size_t done = 0; done < state.size();) {
        const std::int64_t read = stream.read(&stream, &state[done], state.size() - done);
        if (read <= 0) return false;
        done += static_cast<std::size_t>(read);
    }
    return stream.read(&stream, &more, 1) <= 0 && session->Restore(state);
}

// --- the window ---

bool ClapPlugin::MayTouchWindow() const {
    return threads == nullptr || threads->is_main_thread(&host);
}

bool ClapPlugin::MakeWindow() {
    if (windowIsMade || !idle.Connect(host)) return false;
    windowIsMade = true;
    return true;
}

void ClapPlugin::EndWindow() {
    HideWindow();
    windowIsMade = false;
    windowParent = 0;
}

bool ClapPlugin::SetParent(std::uint32_t parent) {
    if (!windowIsMade || windowParent != 0) return false;
    windowParent = parent;
    if (!ShowWindow()) windowParent = 0;
    return windowParent != 0;
}

bool ClapPlugin::ShowWindow() {
    if (windowParent == 0 || !session->OpenWindow(windowParent)) return false;
    session->Object().sizeWindow = [this](std::int32_t width, std::int32_t height) {
        const auto* gui = Find<clap_host_gui_t>(CLAP_EXT_GUI);
        return gui != nullptr && gui->request_resize(&host, static_cast<std::uint32_t>(width),
                                                     static_cast<std::uint32_t>(height));
    };
    if (idle.Begin()) return true;
    session->CloseWindow();
    return false;
}

bool ClapPlugin::HideWindow() {
    if (session == nullptr || !windowIsMade) return false;
    idle.End();
    session->CloseWindow();
    return true;
}

void ClapPlugin::WindowSize(std::uint32_t& width, std::uint32_t& height) {
    const ERect size = session->Object().EditorSize();
    width = static_cast<std::uint32_t>(size.right - size.left);
    height = static_cast<std::uint32_t>(size.bottom - size.top);
}

void ClapPlugin::Idle() {
    idle.Acknowledge();
    session->IdleWindow();
}
