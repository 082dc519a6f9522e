#pragma once
#include <cstddef>
#include <cstdint>

// The published CLAP interface between a host and a plug-in, version 1.2, as far as this plug-in uses it:
// names and layouts are the interface's own, and may not change. Where a thread is named, [main] is the
// host's for windows, [audio] the one that processes.

using clap_id = std::uint32_t;
constexpr clap_id CLAP_INVALID_ID = 0xFFFFFFFF;
constexpr std::size_t CLAP_NAME_SIZE = 256;
constexpr std::size_t CLAP_PATH_SIZE = 1024;

struct clap_version_t {
    std::uint32_t major, minor, revision;
};
constexpr clap_version_t CLAP_VERSION = {1, 2, 0};

struct clap_host_t {
    clap_version_t clap_version;
    void* host_data;
    const char *name, *vendor, *url, *version;
    const void* (*get_extension)(const clap_host_t* host, const char* id);  // [any]
    void (*request_restart)(const clap_host_t* host);                       // [any]
    void (*request_process)(const clap_host_t* host);                       // [any]
    void (*request_callback)(const clap_host_t* host);                      // [any]
};

// --- events ---

constexpr std::uint16_t CLAP_CORE_EVENT_SPACE_ID = 0;

enum : std::uint16_t {
    CLAP_EVENT_PARAM_VALUE = 5,
    CLAP_EVENT_PARAM_GESTURE_BEGIN = 7,
    CLAP_EVENT_PARAM_GESTURE_END = 8,
    CLAP_EVENT_MIDI = 10,
};

struct clap_event_header_t {
    std::uint32_t size;  // bytes, with this header
    std::uint32_t time;  // frame of the block
    std::uint16_t space_id, type;
    std::uint32_t flags;
};

struct clap_event_param_value_t {
    clap_event_header_t header;
    clap_id param_id;
    void* cookie;
    std::int32_t note_id;  // this and the next three: -1 for all notes
    std::int16_t port_index, channel, key;
    double value;
};

struct clap_event_param_gesture_t {
    clap_event_header_t header;
    clap_id param_id;
};

struct clap_event_midi_t {
    clap_event_header_t header;
    std::uint16_t port_index;
    std::uint8_t data[3];
};

// Sorted by time, in either direction.
struct clap_input_events_t {
    void* ctx;
    std::uint32_t (*size)(const clap_input_events_t* list);
    const clap_event_header_t* (*get)(const clap_input_events_t* list, std::uint32_t index);
};

struct clap_output_events_t {
    void* ctx;
    bool (*try_push)(const clap_output_events_t* list, const clap_event_header_t* event);  // copies it
};

// --- a block ---

struct clap_audio_buffer_t {
    float** data32;  // either these
    double** data64;
    std::uint32_t channel_count, latency;
    std::uint64_t constant_mask;  // a bit each channel whose samples are all equal
};

enum clap_process_status : std::int32_t { CLAP_PROCESS_ERROR = 0, CLAP_PROCESS_CONTINUE = 1 };

struct clap_process_t {
    std::int64_t steady_time;
    std::uint32_t frames_count;
    const void* transport;
    const clap_audio_buffer_t* audio_inputs;
    clap_audio_buffer_t* audio_outputs;
    std::uint32_t audio_inputs_count, audio_outputs_count;
    const clap_input_events_t* in_events;
    const clap_output_events_t* out_events;
};

// --- the plug-in ---

struct clap_plugin_descriptor_t {
    clap_version_t clap_version;
    const char *id, *name, *vendor, *url, *manual_url, *support_url, *version, *description;
    const char* const* features;  // up to a null
};

struct clap_plugin_t {
    const clap_plugin_descriptor_t* desc;
    void* plugin_data;
    bool (*init)(const clap_plugin_t* plugin);     // [main]
    void (*destroy)(const clap_plugin_t* plugin);  // [main]
    bool (*activate)(const clap_plugin_t* plugin, double rate, std::uint32_t least_frames,
                     std::uint32_t most_frames);                                                 // [main]
    void (*deactivate)(const clap_plugin_t* plugin);                                             // [main]
    bool (*start_processing)(const clap_plugin_t* plugin);                                       // [audio]
    void (*stop_processing)(const clap_plugin_t* plugin);                                        // [audio]
    void (*reset)(const clap_plugin_t* plugin);                                                  // [audio]
    clap_process_status (*process)(const clap_plugin_t* plugin, const clap_process_t* process);  // [audio]
    const void* (*get_extension)(const clap_plugin_t* plugin, const char* id);                   // [any]
    void (*on_main_thread)(const clap_plugin_t* plugin);                                         // [main]
};

constexpr char CLAP_PLUGIN_FACTORY_ID[] = "clap.plugin-factory";

struct clap_plugin_factory_t {
    std::uint32_t (*get_plugin_count)(const clap_plugin_factory_t* factory);
    const clap_plugin_descriptor_t* (*get_plugin_descriptor)(const clap_plugin_factory_t* factory,
                                                             std::uint32_t index);
    const clap_plugin_t* (*create_plugin)(const clap_plugin_factory_t* factory, const clap_host_t* host,
                                          const char* id);
};

// What a file exports as `clap_entry`.
struct clap_plugin_entry_t {
    clap_version_t clap_version;
    bool (*init)(const char* path);
    void (*deinit)();
    const void* (*get_factory)(const char* id);
};

// --- extensions; those of the plug-in are called on [main] ---

constexpr char CLAP_EXT_AUDIO_PORTS[] = "clap.audio-ports";
constexpr char CLAP_PORT_MONO[] = "mono";

enum : std::uint32_t {
    CLAP_AUDIO_PORT_IS_MAIN = 1U << 0,
    CLAP_AUDIO_PORT_SUPPORTS_64BITS = 1U << 1,
    CLAP_AUDIO_PORT_REQUIRES_COMMON_SAMPLE_SIZE = 1U << 3,
};

struct clap_audio_port_info_t {
    clap_id id;
    char name[CLAP_NAME_SIZE];
    std::uint32_t flags, channel_count;
    const char* port_type;
    clap_id in_place_pair;
};

struct clap_plugin_audio_ports_t {
    std::uint32_t (*count)(const clap_plugin_t* plugin, bool is_input);
    bool (*get)(const clap_plugin_t* plugin, std::uint32_t index, bool is_input,
                clap_audio_port_info_t* info);
};

constexpr char CLAP_EXT_NOTE_PORTS[] = "clap.note-ports";
constexpr std::uint32_t CLAP_NOTE_DIALECT_MIDI = 1U << 1;

struct clap_note_port_info_t {
    clap_id id;
    std::uint32_t supported_dialects, preferred_dialect;
    char name[CLAP_NAME_SIZE];
};

struct clap_plugin_note_ports_t {
    std::uint32_t (*count)(const clap_plugin_t* plugin, bool is_input);
    bool (*get)(const clap_plugin_t* plugin, std::uint32_t index, bool is_input, clap_note_port_info_t* info);
};

constexpr char CLAP_EXT_PARAMS[] = "clap.params";

enum : std::uint32_t {
    CLAP_PARAM_IS_STEPPED = 1U << 0,
    CLAP_PARAM_IS_HIDDEN = 1U << 2,
    CLAP_PARAM_IS_AUTOMATABLE = 1U << 5,
    CLAP_PARAM_IS_ENUM = 1U << 16,
};

struct clap_param_info_t {
    clap_id id;
    std::uint32_t flags;
    void* cookie;
    char name[CLAP_NAME_SIZE];
    char module[CLAP_PATH_SIZE];
    double min_value, max_value, default_value;
};

struct clap_plugin_params_t {
    std::uint32_t (*count)(const clap_plugin_t* plugin);
    bool (*get_info)(const clap_plugin_t* plugin, std::uint32_t index, clap_param_info_t* info);
    bool (*get_value)(const clap_plugin_t* plugin, clap_id id, double* value);
    bool (*value_to_text)(const clap_plugin_t* plugin, clap_id id, double value, char* text,
                          std::uint32_t size);
    bool (*text_to_value)(const clap_plugin_t* plugin, clap_id id, const char* text, double* value);
    // In the place of process while there is none; [audio] while active.
    void (*flush)(const clap_plugin_t* plugin, const clap_input_events_t* in,
                  const clap_output_events_t* out);
};

struct clap_host_params_t {
    void (*rescan)(const clap_host_t* host, std::uint32_t flags);             // [main]
    void (*clear)(const clap_host_t* host, clap_id id, std::uint32_t flags);  // [main]
    void (*request_flush)(const clap_host_t* host);                           // [any] but [audio]
};

constexpr char CLAP_EXT_STATE[] = "clap.state";

// Each may move fewer bytes than asked for; 0 at the end, -1 for a failure.
struct clap_istream_t {
    void* ctx;
    std::int64_t (*read)(const clap_istream_t* stream, void* buffer, std::uint64_t size);
};
struct clap_ostream_t {
    void* ctx;
    std::int64_t (*write)(const clap_ostream_t* stream, const void* buffer, std::uint64_t size);
};

struct clap_plugin_state_t {
    bool (*save)(const clap_plugin_t* plugin, const clap_ostream_t* stream);
    bool (*load)(const clap_plugin_t* plugin, const clap_istream_t* stream);
};

constexpr char CLAP_EXT_LATENCY[] = "clap.latency";

struct clap_plugin_latency_t {
    std::uint32_t (*get)(const clap_plugin_t* plugin);
};

constexpr char CLAP_EXT_RENDER[] = "clap.render";

struct clap_plugin_render_t {
    bool (*has_hard_realtime_requirement)(const clap_plugin_t* plugin);
    bool (*set)(const clap_plugin_t* plugin, std::int32_t mode);
};

constexpr char CLAP_EXT_GUI[] = "clap.gui";
constexpr char CLAP_WINDOW_API_X11[] = "x11";

struct clap_window_t {
    const char* api;
    union {
        void* ptr;
        unsigned long x11;
    };
};

struct clap_plugin_gui_t {
    bool (*is_api_supported)(const clap_plugin_t* plugin, const char* api, bool is_floating);
    bool (*get_preferred_api)(const clap_plugin_t* plugin, const char** api, bool* is_floating);
    bool (*create)(const clap_plugin_t* plugin, const char* api, bool is_floating);
    void (*destroy)(const clap_plugin_t* plugin);
    bool (*set_scale)(const clap_plugin_t* plugin, double scale);
    bool (*get_size)(const clap_plugin_t* plugin, std::uint32_t* width, std::uint32_t* height);
    bool (*can_resize)(const clap_plugin_t* plugin);
    bool (*get_resize_hints)(const clap_plugin_t* plugin, void* hints);
    bool (*adjust_size)(const clap_plugin_t* plugin, std::uint32_t* width, std::uint32_t* height);
    bool (*set_size)(const clap_plugin_t* plugin, std::uint32_t width, std::uint32_t height);
    bool (*set_parent)(const clap_plugin_t* plugin, const clap_window_t* window);
    bool (*set_transient)(const clap_plugin_t* plugin, const clap_window_t* window);
    void (*suggest_title)(const clap_plugin_t* plugin, const char* title);
    bool (*show)(const clap_plugin_t* plugin);
    bool (*hide)(const clap_plugin_t* plugin);
};

struct clap_host_gui_t {  // [any] but for what is said of main
    void (*resize_hints_changed)(const clap_host_t* host);
    bool (*request_resize)(const clap_host_t* host, std::uint32_t width, std::uint32_t height);
    bool (*request_show)(const clap_host_t* host);
    bool (*request_hide)(const clap_host_t* host);
    void (*closed)(const clap_host_t* host, bool was_destroyed);
};

constexpr char CLAP_EXT_TIMER_SUPPORT[] = "clap.timer-support";

struct clap_plugin_timer_support_t {
    void (*on_timer)(const clap_plugin_t* plugin, clap_id id);
};
struct clap_host_timer_support_t {  // [main]
    bool (*register_timer)(const clap_host_t* host, std::uint32_t milliseconds, clap_id* id);
    bool (*unregister_timer)(const clap_host_t* host, clap_id id);
};

constexpr char CLAP_EXT_POSIX_FD_SUPPORT[] = "clap.posix-fd-support";
constexpr std::uint32_t CLAP_POSIX_FD_READ = 1U << 0;

struct clap_plugin_posix_fd_support_t {
    void (*on_fd)(const clap_plugin_t* plugin, int descriptor, std::uint32_t flags);
};
struct clap_host_posix_fd_support_t {  // [main]
    bool (*register_fd)(const clap_host_t* host, int descriptor, std::uint32_t flags);
    bool (*modify_fd)(const clap_host_t* host, int descriptor, std::uint32_t flags);
    bool (*unregister_fd)(const clap_host_t* host, int descriptor);
};

constexpr char CLAP_EXT_THREAD_CHECK[] = "clap.thread-check";

struct clap_host_thread_check_t {  // [any]
    bool (*is_main_thread)(const clap_host_t* host);
    bool (*is_audio_thread)(const clap_host_t* host);
};

// As C lays them out on systems of 64 bits.
static_assert(sizeof(clap_version_t) == 12 && sizeof(clap_event_header_t) == 16);
static_assert(sizeof(clap_host_t) == 88 && offsetof(clap_host_t, get_extension) == 56);
static_assert(sizeof(clap_event_param_value_t) == 56 && offsetof(clap_event_param_value_t, value) == 48);
static_assert(sizeof(clap_event_param_gesture_t) == 20 && sizeof(clap_event_midi_t) == 24);
static_assert(offsetof(clap_event_midi_t, data) == 18);
static_assert(sizeof(clap_audio_buffer_t) == 32 && sizeof(clap_process_t) == 64);
static_assert(offsetof(clap_process_t, audio_inputs) == 24 && offsetof(clap_process_t, in_events) == 48);
static_assert(sizeof(clap_plugin_descriptor_t) == 88 && sizeof(clap_plugin_t) == 96);
static_assert(sizeof(clap_plugin_entry_t) == 40 && sizeof(clap_plugin_factory_t) == 24);
static_assert(sizeof(clap_audio_port_info_t) == 288 && sizeof(clap_note_port_info_t) == 268);
static_assert(sizeof(clap_param_info_t) == 1320 && offsetof(clap_param_info_t, min_value) == 1296);
static_assert(sizeof(clap_plugin_params_t) == 48 && sizeof(clap_plugin_gui_t) == 120);
static_assert(sizeof(clap_window_t) == 16);
