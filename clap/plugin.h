#pragma once
#include <memory>

#include "clap/idle_source.h"
#include "clap/interface.h"
#include "hosting/session_instance.h"

// One instance of the CLAP plug-in, as its host holds it. A parameter's plain value is from 0 to 1, or from 0
// to its number of steps.
//
// Calls that the interface forbids (in a wrong order, or of the window on a wrong thread where the host can
// say so) are refused, and change nothing.
//
// Ownership: made by the factory, deleted by the record's destroy. Threads: as interface.h says of each call.
class ClapPlugin final : private ISessionListener {
public:
    ClapPlugin(const clap_plugin_t& calls, const clap_host_t& newHost);
    ~ClapPlugin();
    ClapPlugin(const ClapPlugin&) = delete;
    ClapPlugin& operator=(const ClapPlugin&) = delete;

    const clap_plugin_t& Record() const { return record; }
    bool IsReady() const { return session != nullptr; }

    // Whether the host ends in a crash at the first event of a plug-in without a port for notes into it, of
    // which this one has no use.
    bool NeedsNoteInput() const;

    bool Init();
    bool Activate(double rate);
    void Deactivate() { session->SetActive(false); }
    bool IsActive() const { return session->IsActive(); }
    void Reset();
    clap_process_status Process(const clap_process_t& block);

    bool GetParameter(clap_id id, double& value);
    bool ShowParameter(clap_id id, double value, char* text, std::uint32_t size);
    bool ReadParameter(clap_id id, const char* text, double& value);
    void Flush(const clap_input_events_t* in, const clap_output_events_t* out);

    bool Save(const clap_ostream_t& stream);
    bool Load(const clap_istream_t& stream);

    bool MakeWindow();
    void EndWindow();
    // Before SetParent, as the interface has it.
    bool SetScale(double scale) { return windowIsMade && session->SetScale(scale); }
    bool SetParent(std::uint32_t parent);  // a window's number; opens it
    bool ShowWindow();
    bool HideWindow();
    void WindowSize(std::uint32_t& width, std::uint32_t& height);
    void Idle();
    bool MayTouchWindow() const;  // as far as the host says which thread this is

private:
    void ChangedInside(std::int32_t index, float value) override;
    void TakeParameters(const clap_input_events_t* events);
    void GiveParameters(const clap_output_events_t* events);
    template <typename Extension>
    const Extension* Find(const char* id) const {
        return static_cast<const Extension*>(host.get_extension(&host, id));
    }

    const clap_plugin_t record;
    const clap_host_t& host;
    const clap_host_params_t* hostParams = nullptr;
    const clap_host_thread_check_t* threads = nullptr;
    bool windowIsMade = false;
    std::uint32_t windowParent = 0;  // while made, once it was set
    IdleSource idle;
    std::unique_ptr<SessionInstance> session;  // from Init on
};
