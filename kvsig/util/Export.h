#pragma once

/// KVSIG_API marks what the shared library exports; everything else is hidden. KVSIG_LOCAL hides
/// what lies inside something exported.
#if defined(_WIN32)
#define KVSIG_LOCAL
#if defined(KVSIG_BUILDING)
#define KVSIG_API __declspec(dllexport)
#elif defined(KVSIG_STATIC)
#define KVSIG_API
#else
#define KVSIG_API __declspec(dllimport)
#endif
#else
#define KVSIG_LOCAL __attribute__((visibility("hidden")))
#define KVSIG_API __attribute__((visibility("default")))
#endif
