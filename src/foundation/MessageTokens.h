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

#include <type_traits>

#include <qel/QELError.h>

namespace qel {

/// @tparam Value  int, std::size_t, float, double, or const char*
template <typename Value, typename = std::enable_if_t<std::is_scalar_v<Value>>>
SystemMsg& operator%(SystemMsg& message, Value value);
template <typename Value, typename = std::enable_if_t<std::is_scalar_v<Value>>>
UserMsg& operator%(UserMsg& message, Value value);

} // namespace qel

#endif
