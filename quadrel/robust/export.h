// Visibility of the robust-fit layer.
//
// libquadrel_robust.so is compiled with hidden visibility: only what carries
// QUADREL_ROBUST_API appears in its dynamic symbol table. Helpers under
// internal/ stay invisible to callers.
#ifndef QUADREL_ROBUST_EXPORT_H
#define QUADREL_ROBUST_EXPORT_H

#if defined(_WIN32)
#if defined(QUADREL_ROBUST_BUILDING)
#define QUADREL_ROBUST_API __declspec(dllexport)
#else
#define QUADREL_ROBUST_API __declspec(dllimport)
#endif
#else
#define QUADREL_ROBUST_API __attribute__((visibility("default")))
#endif

#endif  // QUADREL_ROBUST_EXPORT_H
