// ORVIK_API marks what the shared library shows; everything else stays inside it.
// ORVIK_BUILD is defined while the library itself is compiled, ORVIK_STATIC by programs that link its objects directly.
#pragma once

#if __cplusplus <= 201703L
#error "OrvikShared needs C++20: compile with -std=c++20"
#endif

#if defined(_WIN32)
#if defined(ORVIK_STATIC)
#define ORVIK_API
#elif defined(ORVIK_BUILD)
#define ORVIK_API __declspec(dllexport)
#else
#define ORVIK_API __declspec(dllimport)
#endif
#else
#define ORVIK_API __attribute__((visibility("default")))
#endif

// What a plug-in shows of itself, whoever compiles it.
#if defined(_WIN32)
#define ORVIK_PLUGIN_EXPORT __declspec(dllexport)
#else
#define ORVIK_PLUGIN_EXPORT __attribute__((visibility("default")))
#endif
