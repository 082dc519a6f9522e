// What the address sanitizer must not count against us: the font library under the picture's captions keeps
// its configuration to the end. Visible, or the sanitizer's own library would not find it.
extern "C" {
#pragma GCC visibility push(default)
const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}
#pragma GCC visibility pop
}
