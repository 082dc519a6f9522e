#pragma once
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

    // Calls `step` and the editor's idle about 30 times a second, until the user closes the window or `step`
    // says false.
    void Run(const std::function<bool()>& step);
    // What the window shows, as the bytes of a PNG.
    std::string Picture();

private:
    struct Window;
    bool UserHasClosed();

    HostedPlugin& plugin;
    std::unique_ptr<Window> window;
};
