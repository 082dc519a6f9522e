#pragma once
#include "clap/factory.h"
#include "tests/faces/face.h"

// A CLAP host with one instance: it offers timers, descriptors and thread checks, and takes as many events of
// a block as it has space for.
class ClapHost : public Face {
public:
    explicit ClapHost(double newRate, const void* factoryCalls = ClapFactory(CLAP_PLUGIN_FACTORY_ID))
        : rate(newRate) {
        host = {CLAP_VERSION, this, "tests", "", "", "1", Offered, Ignored, Ignored, Ignored};
        const auto* factory = static_cast<const clap_plugin_factory_t*>(factoryCalls);
        plugin = factory->create_plugin(factory, &host, factory->get_plugin_descriptor(factory, 0)->id);
    }
    ~ClapHost() override {
        if (plugin != nullptr) plugin->destroy(plugin);
        EXPECT_EQ(timer, CLAP_INVALID_ID) << "a timer is left";
        EXPECT_EQ(descriptor, -1) << "a descriptor is left";
    }

    template <typename Calls>
    const Calls& Extension(const char* id) const {
        return *static_cast<const Calls*>(plugin->get_extension(plugin, id));
    }
    const clap_plugin_params_t& Params() const { return Extension<clap_plugin_params_t>(CLAP_EXT_PARAMS); }
    const clap_plugin_gui_t& Gui() const { return Extension<clap_plugin_gui_t>(CLAP_EXT_GUI); }

    bool Init() override { return plugin->init(plugin); }
    void SetActive(bool active) override {
        if (!active) return plugin->stop_processing(plugin), plugin->deactivate(plugin);
        EXPECT_TRUE(plugin->activate(plugin, rate, 1, 1 << 20));
        EXPECT_TRUE(plugin->start_processing(plugin));
    }
    void Set(std::int32_t index, float value) override {
        clap_event_param_value_t event{};
        event.header = {sizeof event, 0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_PARAM_VALUE, 0};
        event.param_id = static_cast<clap_id>(index);
        event.value = static_cast<double>(value) * Scale(index);
        changes.push_back(event);
    }
    float Get(std::int32_t index) override {
        double value = -1;
        EXPECT_TRUE(Params().get_value(plugin, static_cast<clap_id>(index), &value));
        return static_cast<float>(value / Scale(index));
    }
    void SetRate(double newRate) override { rate = newRate; }
    std::string Save() override {
        std::string state;
        const clap_ostream_t stream = {
            &state, [](const clap_ostream_t* to, const void* data, std::uint64_t size) {
                const auto part = std::min<std::uint64_t>(size, 100);
                static_cast<std::string*>(to->ctx)->append(static_cast<const char*>(data), part);
                return static_cast<std::int64_t>(part);
            }};
        EXPECT_TRUE(Extension<clap_plugin_state_t>(CLAP_EXT_STATE).save(plugin, &stream));
        return state;
    }
    bool Load(const std::string& state) override {
        std::string left = state;
        const clap_istream_t stream = {&left, [](const clap_istream_t* from, void* data, std::uint64_t size) {
                                           auto& text = *static_cast<std::string*>(from->ctx);
                                           const auto part = text.copy(static_cast<char*>(data), size);
                                           text.erase(0, part);
                                           return static_cast<std::int64_t>(part);
                                       }};
        return Extension<clap_plugin_state_t>(CLAP_EXT_STATE).load(plugin, &stream);
    }
    bool OpenWindow(std::uint32_t parent) override {
        clap_window_t window{CLAP_WINDOW_API_X11, {}};
        window.x11 = parent;
        return Gui().create(plugin, CLAP_WINDOW_API_X11, false) &&
               (scale == 0 || Gui().set_scale(plugin, scale)) && Gui().set_parent(plugin, &window) &&
               Gui().show(plugin);
    }
    std::int32_t WindowWidth() override {
        std::uint32_t width = 0, height = 0;
        EXPECT_TRUE(Gui().get_size(plugin, &width, &height));
        return static_cast<std::int32_t>(width);
    }
    void IdleWindow() override {
        if (timer != CLAP_INVALID_ID)
            Extension<clap_plugin_timer_support_t>(CLAP_EXT_TIMER_SUPPORT).on_timer(plugin, timer);
        if (descriptor >= 0)
            Extension<clap_plugin_posix_fd_support_t>(CLAP_EXT_POSIX_FD_SUPPORT)
                .on_fd(plugin, descriptor, CLAP_POSIX_FD_READ);
    }
    void CloseWindow() override { Gui().destroy(plugin); }

    // Hands changed parameters over while nothing is processed.
    void Flush() {
        Params().flush(plugin, &in, &out);
        changes.clear();
    }

    const clap_plugin_t* plugin = nullptr;
    bool hasTimers = true, takesDescriptors = true, isMainThread = true;
    std::vector<clap_event_param_value_t> changed;  // in the window
    clap_id timer = CLAP_INVALID_ID;
    int descriptor = -1;
    int flushRequests = 0;

protected:
    void Run(const float* audioIn, float* audioOut, std::uint32_t frames) override {
        float* inChannel = const_cast<float*>(audioIn);
        clap_audio_buffer_t from{&inChannel, nullptr, 1, 0, 0}, to{&audioOut, nullptr, 1, 0, 0};
        const clap_process_t block = {0, frames, nullptr, &from, &to, 1, 1, &in, &out};
        EXPECT_EQ(plugin->process(plugin, &block), CLAP_PROCESS_CONTINUE);
        changes.clear();
    }

private:
    static ClapHost& Of(const clap_host_t* self) { return *static_cast<ClapHost*>(self->host_data); }
    static void Ignored(const clap_host_t*) {}
    static double Scale(std::int32_t index) { return index == 87 ? 127 : index == 90 ? 15 : 1; }
    static const void* Offered(const clap_host_t* asking, const char* name) {
        const std::string id = name;
        static const clap_host_timer_support_t timers = {
            [](const clap_host_t* self, std::uint32_t, clap_id* made) {
                return *made = Of(self).timer = 7, true;
            },
            [](const clap_host_t* self, clap_id) { return Of(self).timer = CLAP_INVALID_ID, true; }};
        static const clap_host_posix_fd_support_t descriptors = {
            [](const clap_host_t* self, int made, std::uint32_t) {
                return Of(self).takesDescriptors && (Of(self).descriptor = made) >= 0;
            },
            nullptr, [](const clap_host_t* self, int) { return Of(self).descriptor = -1, true; }};
        static const clap_host_thread_check_t threads = {
            [](const clap_host_t* self) { return Of(self).isMainThread; }, nullptr};
        static const clap_host_params_t params = {nullptr, nullptr,
                                                  [](const clap_host_t* self) { ++Of(self).flushRequests; }};
        static const clap_host_gui_t gui = {nullptr,
                                            [](const clap_host_t* self, std::uint32_t width, std::uint32_t) {
                                                Of(self).hostWidth = static_cast<std::int32_t>(width);
                                                return true;
                                            },
                                            nullptr, nullptr, nullptr};
        if (id == CLAP_EXT_GUI) return &gui;
        if (id == CLAP_EXT_TIMER_SUPPORT) return Of(asking).hasTimers ? &timers : nullptr;
        if (id == CLAP_EXT_POSIX_FD_SUPPORT) return &descriptors;
        if (id == CLAP_EXT_THREAD_CHECK) return &threads;
        return id == CLAP_EXT_PARAMS ? &params : nullptr;
    }
    bool Take(const clap_event_header_t& event) {
        if (!HasSpace()) return false;
        if (event.type == CLAP_EVENT_MIDI) {
            const auto& midi = reinterpret_cast<const clap_event_midi_t&>(event);
            Keep(event.time, {reinterpret_cast<const char*>(midi.data), 3});
        } else if (event.type == CLAP_EVENT_PARAM_VALUE) {
            changed.push_back(reinterpret_cast<const clap_event_param_value_t&>(event));
        }
        return true;
    }

    double rate;
    clap_host_t host{};
    std::vector<clap_event_param_value_t> changes;
    const clap_input_events_t in = {
        this,
        [](const clap_input_events_t* list) {
            return static_cast<std::uint32_t>(static_cast<ClapHost*>(list->ctx)->changes.size());
        },
        [](const clap_input_events_t* list, std::uint32_t i) -> const clap_event_header_t* {
            return &static_cast<ClapHost*>(list->ctx)->changes[i].header;
        }};
    const clap_output_events_t out = {this,
                                      [](const clap_output_events_t* list, const clap_event_header_t* event) {
                                          return static_cast<ClapHost*>(list->ctx)->Take(*event);
                                      }};
};
