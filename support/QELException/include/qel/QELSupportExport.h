#ifndef QEL_SUPPORT_EXPORT_H
#define QEL_SUPPORT_EXPORT_H

/// @file
/// Marks what the support libraries export.

#if defined(QEL_STATIC)
#define QEL_SUPPORT_API
#elif defined(_WIN32)
#if defined(QEL_SUPPORT_BUILD)
#define QEL_SUPPORT_API __declspec(dllexport)
#else
#define QEL_SUPPORT_API __declspec(dllimport)
#endif
#else
#define QEL_SUPPORT_API __attribute__((visibility("default")))
#endif

#endif
