#pragma once
#include <string>

#include "base/mutex.h"

// Something that can show the user a message: a text under a caption.
class IMessageBox {
public:
    virtual ~IMessageBox() = default;
    // [any] Returns at once, whether or not anybody ever looks. Messages come up in the order of the calls.
    virtual void Show(const std::string& text, const std::string& caption) = 0;
};

// An open editor's window, which shows messages inside itself. Implemented by the editor.
class IMessageWindow {
public:
    // [any] Keeps the message for the thread of the window. False if it cannot show any.
    virtual bool TakeMessage(const std::string& text, const std::string& caption) = 0;

protected:
    ~IMessageWindow() = default;
};

// The messages of one plug-in instance: in its editor's window while that is open, else as the system shows
// them. Owned by the instance. Threads: [any].
class MessageBox : public IMessageBox {
public:
    void Show(const std::string& text, const std::string& caption) override;
    // [ui] The window in which to show, or null when it closes. When this returns, the window before is not
    // called any more. Not from within TakeMessage.
    void SetWindow(IMessageWindow* newWindow);

private:
    Mutex lock;
    IMessageWindow* window GUARDED_BY(lock) = nullptr;  // not owned
};

// The desktop's way. On Linux a dialog program, if there is one and a display, otherwise a line on standard
// error; on Windows the system's own box.
IMessageBox& DesktopMessageBox();
// The same, unless another stands in its place.
IMessageBox& SystemMessageBox();
// Another way in its place, or with null the system's own again. Not owned.
void SubstituteSystemMessageBox(IMessageBox* box);
