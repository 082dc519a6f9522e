#pragma once
#include <chrono>
#include <functional>
#include <memory>
#include <string>

class HostedPlugin;

// A plug-in's editor in a window of its own, as a host has it. Needs an X display.
//
// Threads: one, the one that made it. Errors: std::runtime_error with the reason.
class EditorWindow {
public:
    // Opens window and editor, at `scale` times the layout's size; 0 for the size that the user prefers.
    EditorWindow(HostedPlugin& plugin, const std::string& title, double scale = 0);
    ~EditorWindow();  // closes both
    EditorWindow(const EditorWindow&) = delete;
    EditorWindow& operator=(const EditorWindow&) = delete;

    static constexpr std::chrono::milliseconds idlePause{33};
    // Calls `step`, and after the pause the editor's idle, again and again until the user closes the window
    // or `step` says false.
    void Run(const std::function<bool()>& step, std::chrono::milliseconds pause = idlePause);
    // What the window shows, as the bytes of a PNG.
    std::string Picture();

private:
    struct Window;
    bool UserHasClosed();

    HostedPlugin& plugin;
    std::unique_ptr<Window> window;
};
