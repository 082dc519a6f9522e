#pragma once
#include "editor/editor_factory.h"
#include "plugin/gui_plugin_ex.h"
#include "tests/support/host.h"
#include "tests/support/parent_window.h"

struct Automation {
    std::int32_t index;
    float value;
};

// A host with a window for the plug-in's editor, and the changes that it reports.
class EditorHost : public Host, public ParentWindow {
public:
    EditorHost() { Connect(); }
    ~EditorHost() {
        Call(effEditClose);
        Close();
    }
    EditorHost(const EditorHost&) = delete;
    EditorHost& operator=(const EditorHost&) = delete;

    bool Open() { return Call(effEditOpen, 0, 0, Handle()) != 0; }

    // Gives idle time until the condition holds; false if it never does.
    bool Await(const std::function<bool()>& condition) {
        return AwaitThat([&] {
            if (condition()) return true;
            Call(effEditIdle);
            return false;
        });
    }
    // Until the window shows the same for a while: whatever was on its way has been drawn.
    void Settle() {
        AtRest(16, [&] { return Call(effEditIdle), Pixels(0, 0, 267, 320); });  // all but the moving picture
    }

    // The mouse from outside, by the display's own means.
    void MoveTo(int x, int y) { Tool({"mousemove", std::to_string(x), std::to_string(y)}); }
    void Press() { Tool({"mousedown", "1"}); }
    void Release() { Tool({"mouseup", "1"}); }
    void Click(int x, int y) {
        MoveTo(x, y);
        Press();
        Release();
    }
    void RightClick(int x, int y) {
        MoveTo(x, y);
        Tool({"click", "3"});
    }
    void Roll(const char* button) { Tool({"click", button}); }
    void Key(const char* name) { Tool({"key", name}); }
    void Type(const char* text) { Tool({"type", text}); }

    // The code of a key that has come to the host's window; 0 for none.
    int PressedKey() {
        const std::uint32_t keys = XCB_EVENT_MASK_KEY_PRESS;
        xcb_change_window_attributes(connection, parent, XCB_CW_EVENT_MASK, &keys);
        Sync();
        const Owned<xcb_generic_event_t> event(xcb_poll_for_event(connection));
        if (!event || (event->response_type & 0x7F) != XCB_KEY_PRESS) return 0;
        return reinterpret_cast<const xcb_key_press_event_t*>(event.get())->detail;
    }

    std::uint32_t Pixel(int x, int y) {  // 0xRRGGBB
        const auto p = Pixels(x, y, 1, 1);
        return p.empty() ? 0U : std::uint32_t{p[2]} << 16 | std::uint32_t{p[1]} << 8 | p[0];
    }

    std::vector<Automation> automated;
    bool resizes = true;
    CORVAguivstEx& plugin = Made();

private:
    void Tool(std::vector<std::string> words) {
        words.insert(words.begin(), "xdotool");
        if (Run(std::move(words)) != 0) throw std::runtime_error("xdotool failed");
    }
    std::intptr_t Resize(std::intptr_t width, std::intptr_t height) {
        if (!resizes) return 0;
        const std::uint32_t values[] = {std::uint32_t(width), std::uint32_t(height)};
        xcb_configure_window(connection, parent, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
        Sync();
        return 1;
    }
    CORVAguivstEx& Made() {
        keepsEvents = false;
        answers = [this](const Request& request, std::intptr_t& answer) { return Answer(request, answer); };
        Host::Open([](audioMasterCallback callback) {
            return (new CORVAguivstEx(callback, &MakeGuiEditor))->getAeffect();
        });
        return Object<CORVAguivstEx>();
    }
    bool Answer(const Request& request, std::intptr_t& answer) {
        if (request.opcode == audioMasterAutomate) automated.push_back({request.index, request.opt});
        if (request.opcode == audioMasterCanDo)
            answer = std::string(static_cast<const char*>(request.ptr)) == "receiveVstMidiEvent";
        if (request.opcode == audioMasterSizeWindow) answer = Resize(request.index, request.value);
        return answer != 0;
    }
};
