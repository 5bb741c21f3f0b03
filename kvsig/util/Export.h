#pragma once

/// Marks what the shared library exports; everything else is hidden.
#if defined(_WIN32)
#if defined(KVSIG_BUILDING)
#define KVSIG_API __declspec(dllexport)
#elif defined(KVSIG_STATIC)
#define KVSIG_API
#else
#define KVSIG_API __declspec(dllimport)
#endif
#else
#define KVSIG_API __attribute__((visibility("default")))
#endif
