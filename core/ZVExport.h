#pragma once

/// ZV_API marks what the shared library exports. It is the only place where compilers differ.
#if defined(_WIN32)
#if defined(ZV_BUILDING_LIBRARY)
#define ZV_API __declspec(dllexport)
#else
#define ZV_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define ZV_API __attribute__((visibility("default")))
#else
#define ZV_API
#endif

/// Lets GCC and Clang check the arguments of printf-like functions.
#if defined(__MINGW32__)
#define ZV_PRINTF_LIKE(text, first) __attribute__((__format__(__gnu_printf__, text, first)))
#elif defined(__GNUC__)
#define ZV_PRINTF_LIKE(text, first) __attribute__((__format__(__printf__, text, first)))
#else
#define ZV_PRINTF_LIKE(text, first)
#endif
