#pragma once
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "editor/editor_factory.h"
#include "plugin/gui_plugin_ex.h"
#include "tests/support/await.h"
#include "tests/support/parent_window.h"

struct Automation {
    std::int32_t index;
    float value;
};

// What a host sees of the plug-in and its editor: a window, the host calls, and the changes that it reports.
class EditorHost : public ParentWindow {
public:
    EditorHost() : plugin(&Callback, &MakeGuiEditor) {
        host = this;
        Connect();
    }
    ~EditorHost() {
        Call(effEditClose);
        if (host == this) host = nullptr;
    }
    EditorHost(const EditorHost&) = delete;
    EditorHost& operator=(const EditorHost&) = delete;

    std::intptr_t Call(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                       void* ptr = nullptr, float opt = 0) {
        AEffect* effect = plugin.getAeffect();
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
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
        std::vector<std::uint8_t> last;
        int same = 0;
        Await([&] {
            auto now = Pixels(0, 0, 267, 320);  // all but the picture that never rests
            same = now == last ? same + 1 : 0;
            last = std::move(now);
            return same > 15;
        });
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

    std::uint32_t Pixel(int x, int y) {  // 0xRRGGBB
        const auto p = Pixels(x, y, 1, 1);
        return p.empty() ? 0U : std::uint32_t{p[2]} << 16 | std::uint32_t{p[1]} << 8 | p[0];
    }

    std::vector<Automation> automated;
    bool resizes = true;
    CORVAguivstEx plugin;

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
    static std::intptr_t Callback(AEffect*, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                  void* ptr, float opt) {
        switch (opcode) {
            case audioMasterAutomate:
                if (host != nullptr) host->automated.push_back({index, opt});
                return 0;
            case audioMasterVersion: return 2400;
            case audioMasterSizeWindow: return host->Resize(index, value);
            case audioMasterCanDo: return std::string(static_cast<const char*>(ptr)) == "receiveVstMidiEvent";
            default: return 0;
        }
    }
    static inline EditorHost* host = nullptr;  // the callback carries no word of its own: the last one made
};
