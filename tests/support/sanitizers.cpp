// What the sanitizers must not count against us. The text library reads its fonts in a thread of its own; it
// and the libraries under it are not instrumented, so their locks go unseen. The font library keeps its
// configuration to the end, and the C library the list of folders in which a test makes it look for locales.
// Visible, or the sanitizers' own library would not find them.
//
// An editor that opens calls the host under the toolkit's lock, and one that closes waits for that lock: two
// user threads under one lock of the host's could stop each other there, which no host is known to have.
//
// A report ends its process at once: a process that is cut short must not take it along.
extern "C" {
#pragma GCC visibility push(default)
const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\nleak:__argz_add_sep\n";
}
const char* __tsan_default_suppressions() {
    return "race:libfontconfig.so\nrace:libcairo.so\nrace:libpango\nrace:libglib-2.0.so\n"
           "deadlock:guiEditor::close\ndeadlock:guiEditor::open\n";
}
const char* __lsan_default_options() {
    return "print_suppressions=0";
}
const char* __tsan_default_options() {
    return "halt_on_error=1";
}
#pragma GCC visibility pop
}
