// A host in plain C, without the C++ library:
//   plain_host local|global|deepbind ROUNDS FILE...
// Loads the files in their order, plays a note through each that is a plug-in and unloads all of them, ROUNDS
// times. A file named +FILE is a library that the host happens to have loaded before, for all to see.
//
// Ends with 0 if each file loaded and worked, and if the state that the process shares among all of its parts
// was the same before the loading, after it and after the unloading; otherwise says what was not.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fenv.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

// The begin of the published record, as far as this host reads it.
struct Effect {
    int32_t magic;
    intptr_t (*dispatcher)(struct Effect*, int32_t, int32_t, intptr_t, void*, float);
    void (*process)(struct Effect*, float**, float**, int32_t);
    void (*setParameter)(struct Effect*, int32_t, float);
    float (*getParameter)(struct Effect*, int32_t);
    int32_t counts[4], flags;
    intptr_t reserved[2];
    int32_t delays[3];
    float ratio;
    void *object, *user;
    int32_t id, version;
    void (*processReplacing)(struct Effect*, float**, float**, int32_t);
};
typedef intptr_t Callback(struct Effect*, int32_t, int32_t, intptr_t, void*, float);

static int events = 0;

static intptr_t Host(struct Effect* effect, int32_t opcode, int32_t index, intptr_t value, void* data,
                     float opt) {
    (void)effect, (void)index, (void)value, (void)data, (void)opt;
    if (opcode == 8) ++events;
    return opcode == 1 ? 2400 : opcode == 16 ? 44100 : 0;
}

// --- what the process shares ---

static void* XErrorHandler(const char* setter) {
    // The one in force comes back when another is set; null stands for the library's own.
    void* (*const set)(void*) = (void* (*)(void*))dlsym(RTLD_DEFAULT, setter);
    if (set == NULL) return NULL;
    void* const now = set(NULL);
    void* const own = set(now == set(NULL) ? NULL : now);
    return now == own ? NULL : now;
}

// In words, what a plug-in may not change; threads, files, signals and the like are looked at elsewhere.
static char* State(void) {
    static char text[3][4096];
    static int turn = 0;
    char* const begin = text[turn++ % 3];
    char* const end = begin + sizeof text[0];
    const mode_t files = umask(0);
    umask(files);
    char* to = begin + snprintf(begin, sizeof text[0], "umask %o\nrounding %d\nX errors %p %p\n", files,
                                fegetround(), XErrorHandler("XSetErrorHandler"),
                                XErrorHandler("XSetIOErrorHandler"));
    for (int kind = 0; kind < RLIM_NLIMITS; ++kind) {
        struct rlimit limit;
        if (getrlimit((__rlimit_resource_t)kind, &limit) == 0)
            to += snprintf(to, (size_t)(end - to), "limit %d %llu %llu\n", kind,
                           (unsigned long long)limit.rlim_cur, (unsigned long long)limit.rlim_max);
    }
#if defined(__SSE2__)
    snprintf(to, (size_t)(end - to), "vector control %x\n", _mm_getcsr() & ~0x3FU);
#endif
    return begin;
}

static int Differ(const char* before, const char* after, const char* when) {
    if (strcmp(before, after) == 0) return 0;
    fprintf(stderr, "%s: from\n%sto\n%s", when, before, after);
    return 1;
}

// --- the plug-in ---

static int Play(void* file, const char* name) {
    struct Effect* (*const entry)(Callback*) = (struct Effect * (*)(Callback*)) dlsym(file, "VSTPluginMain");
    Dl_info info;
    struct Effect* effect = NULL;
    if (entry != NULL && dladdr((void*)entry, &info) != 0 && strcmp(info.dli_fname, name) == 0)
        effect = entry(Host);
    if (effect == NULL) {
        fprintf(stderr, "%s: no entry of its own, or not opened\n", name);
        return 1;
    }
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
    if (events == 0) fprintf(stderr, "%s: heard no note\n", name);
    return events == 0;
}

int main(int count, char** words) {
    if (count < 4) return 2;
    const int flags = strcmp(words[1], "global") == 0     ? RTLD_NOW | RTLD_GLOBAL
                      : strcmp(words[1], "deepbind") == 0 ? RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND
                                                          : RTLD_NOW | RTLD_LOCAL;
    int faults = 0;
    for (int round = atoi(words[2]); round > 0 && faults == 0; --round) {
        void* files[16] = {NULL};
        const char* before = NULL;
        const int all = count - 3 < 16 ? count - 3 : 16;
        for (int i = 0; i < all; ++i) {
            const int library = words[3 + i][0] == '+';
            if (before == NULL && !library) before = State();
            files[i] =
                library ? dlopen(words[3 + i] + 1, RTLD_NOW | RTLD_GLOBAL) : dlopen(words[3 + i], flags);
            if (files[i] != NULL) continue;
            fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
        faults += Differ(before, State(), "loading");
        for (int i = 0; i < all; ++i)
            if (words[3 + i][0] != '+') faults += Play(files[i], words[3 + i]);
        for (int i = all - 1; i >= 0; --i) dlclose(files[i]);
        faults += Differ(before, State(), "unloading");
    }
    return faults != 0;
}
