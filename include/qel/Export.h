#ifndef QEL_EXPORT_H
#define QEL_EXPORT_H

/// @file
/// Marks the classes that the library exports.

#if defined(QEL_STATIC)
#define QEL_API
#elif defined(_WIN32)
#if defined(QEL_DATA_HANDLING_BUILD)
#define QEL_API __declspec(dllexport)
#else
#define QEL_API __declspec(dllimport)
#endif
#else
#define QEL_API __attribute__((visibility("default")))
#endif

#endif
