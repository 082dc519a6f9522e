// A host in plain C, without the C++ library:
//   plain_host local|global|deepbind ROUNDS FILE...
// Loads the files in their order, plays a note through each and unloads all of them, ROUNDS times. Ends with 0 if
// each file loaded and worked, and if the floating-point control word and the file mask were the same before the
// loading, after it and after the unloading; otherwise says what was not.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fenv.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

// The begin of the published record, as far as this host reads it.
struct Effect {
    int32_t magic;
    intptr_t (*dispatcher)(struct Effect*, int32_t, int32_t, intptr_t, void*, float);
    void* calls[3];
    int32_t counts[4], flags;
    intptr_t reserved[2];
    int32_t delays[3];
    float ratio;
    void *object, *user;
    int32_t id, version;
    void (*processReplacing)(struct Effect*, float**, float**, int32_t);
};
typedef intptr_t Callback(struct Effect*, int32_t, int32_t, intptr_t, void*, float);

static int events = 0, faults = 0;

static intptr_t Host(struct Effect* effect, int32_t opcode, int32_t index, intptr_t value, void* data,
                     float opt) {
    (void)effect, (void)index, (void)value, (void)data, (void)opt;
    if (opcode == 8) ++events;
    return opcode == 1 ? 2400 : opcode == 16 ? 44100 : 0;
}

// What the process shares among all its parts.
static unsigned State(void) {
    const mode_t files = umask(0);
    umask(files);
    unsigned state = files << 16 | (unsigned)fegetround();
#if defined(__SSE2__)
    state ^= _mm_getcsr() & ~0x3FU;
#endif
    return state;
}

static void Fault(const char* what, const char* file) {
    fprintf(stderr, "%s: %s\n", file, what);
    ++faults;
}

static void Play(void* file, const char* name) {
    struct Effect* (*const entry)(Callback*) = (struct Effect * (*)(Callback*)) dlsym(file, "VSTPluginMain");
    Dl_info info;
    struct Effect* effect = NULL;
    if (entry != NULL && dladdr((void*)entry, &info) != 0 && strcmp(info.dli_fname, name) == 0)
        effect = entry(Host);
    if (effect == NULL) return Fault("no entry of its own, or not opened", name);
    events = 0;
    effect->dispatcher(effect, 0, 0, 0, NULL, 0);
    for (int block = 0; block < 40; ++block) {
        float sound[512], out[512];
        for (int i = 0; i < 512; ++i)
            sound[i] = 0.3F * (float)sin(6.283185307 * 440 / 44100 * (block * 512 + i));
        float *in = sound, *to = out;
        effect->processReplacing(effect, &in, &to, 512);
    }
    effect->dispatcher(effect, 1, 0, 0, NULL, 0);
    if (events == 0) Fault("heard no note", name);
}

int main(int count, char** words) {
    if (count < 4 || count > 8) return 2;
    const int flags = strcmp(words[1], "global") == 0     ? RTLD_NOW | RTLD_GLOBAL
                      : strcmp(words[1], "deepbind") == 0 ? RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND
                                                          : RTLD_NOW | RTLD_LOCAL;
    const unsigned before = State();
    for (int round = atoi(words[2]); round > 0 && faults == 0; --round) {
        void* files[8] = {NULL};
        for (int i = 3; i < count; ++i)
            if ((files[i] = dlopen(words[i], flags)) == NULL) return Fault(dlerror(), words[i]), 1;
        if (State() != before) Fault("changed the process at its loading", words[3]);
        for (int i = 3; i < count; ++i) Play(files[i], words[i]);
        for (int i = count - 1; i >= 3; --i) dlclose(files[i]);
        if (State() != before) Fault("changed the process", words[3]);
    }
    return faults != 0;
}
