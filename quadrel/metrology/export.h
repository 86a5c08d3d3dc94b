// Visibility of the metrology layer.
//
// libquadrel_metrology.so is compiled with hidden visibility: only what carries
// QUADREL_METROLOGY_API appears in its dynamic symbol table. Helpers under
// internal/ stay invisible to callers.
#ifndef QUADREL_METROLOGY_EXPORT_H
#define QUADREL_METROLOGY_EXPORT_H

#if defined(_WIN32)
#if defined(QUADREL_METROLOGY_BUILDING)
#define QUADREL_METROLOGY_API __declspec(dllexport)
#else
#define QUADREL_METROLOGY_API __declspec(dllimport)
#endif
#else
#define QUADREL_METROLOGY_API __attribute__((visibility("default")))
#endif

#endif  // QUADREL_METROLOGY_EXPORT_H
