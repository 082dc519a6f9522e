#pragma once

// Which lock guards what, in words that clang checks (-Wthread-safety, within the static checks) and other
// compilers pass over. The names are those of clang's documentation.
#if defined(__clang__)
#define ORVA_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define ORVA_THREAD_ANNOTATION(attribute)
#endif

#define CAPABILITY(kind) ORVA_THREAD_ANNOTATION(capability(kind))
#define SCOPED_CAPABILITY ORVA_THREAD_ANNOTATION(scoped_lockable)
#define GUARDED_BY(lock) ORVA_THREAD_ANNOTATION(guarded_by(lock))
#define REQUIRES(...) ORVA_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) ORVA_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) ORVA_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define RELEASE_LOCK(...) ORVA_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define NO_THREAD_SAFETY_ANALYSIS ORVA_THREAD_ANNOTATION(no_thread_safety_analysis)
