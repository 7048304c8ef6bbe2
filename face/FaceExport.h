#pragma once

/// ZV_FACE_API marks what the face library exports.
#if defined(_WIN32)
#if defined(ZV_BUILDING_FACE_LIBRARY)
#define ZV_FACE_API __declspec(dllexport)
#else
#define ZV_FACE_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define ZV_FACE_API __attribute__((visibility("default")))
#else
#define ZV_FACE_API
#endif
