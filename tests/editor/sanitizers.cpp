// What the sanitizers must not count against us. The text library reads its fonts in a thread of its own; it
// and the libraries under it are not instrumented, so their locks go unseen. The font library keeps its
// configuration to the end. Visible, or the sanitizers' own library would not find them.
extern "C" {
#pragma GCC visibility push(default)
const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}
const char* __tsan_default_suppressions() {
    return "race:libfontconfig.so\nrace:libcairo.so\nrace:libpango\nrace:libglib-2.0.so\n";
}
#pragma GCC visibility pop
}
