// Visibility of quadrel's interface.
//
// The library is compiled with hidden visibility: only what carries QUADREL_API
// (the class CMatrix and every exported free function) appears in the dynamic
// symbol table of libquadrel.so. Internal functions stay invisible to callers.
#ifndef QUADREL_EXPORT_H
#define QUADREL_EXPORT_H

#if defined(_WIN32)
#if defined(QUADREL_BUILDING)
#define QUADREL_API __declspec(dllexport)
#else
#define QUADREL_API __declspec(dllimport)
#endif
#else
#define QUADREL_API __attribute__((visibility("default")))
#endif

#endif  // QUADREL_EXPORT_H
