#ifndef QEL_FOUNDATION_MESSAGETOKENS_H
#define QEL_FOUNDATION_MESSAGETOKENS_H

/// @file
/// Fills the numbered tokens of messages: the first value replaces every "%1", the second every
/// "%2", and so on.
///
///     SystemMsg message("Requested index out of bounds =%1");
///     throw internal::error("ParametricCurve", "getCurve", message % index, argumentError);
///
/// A token is two characters: of "%10" only "%1" is replaced, the 0 stays. A value without a
/// token leaves the text alone and is named on standard error.

#include <cstddef>

#include <qel/QELError.h>

namespace qel {

SystemMsg& operator%(SystemMsg& message, int value);
SystemMsg& operator%(SystemMsg& message, const char* value);
SystemMsg& operator%(SystemMsg& message, std::size_t value);
SystemMsg& operator%(SystemMsg& message, double value);
SystemMsg& operator%(SystemMsg& message, float value);

UserMsg& operator%(UserMsg& message, int value);
UserMsg& operator%(UserMsg& message, const char* value);
UserMsg& operator%(UserMsg& message, std::size_t value);
UserMsg& operator%(UserMsg& message, double value);
UserMsg& operator%(UserMsg& message, float value);

} // namespace qel

#endif
