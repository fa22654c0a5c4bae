// The oldest form of property lists, text as in { key = "value"; list = (a, b); data = <00ff>; },
// which the system's library does not read.
#pragma once

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Whether this is the form, as far as the first character tells: its root is a dictionary or an
// array.
bool isOldStyleList(ByteView contents);
// Each value is a text, data, an array or a dictionary. Fails with EINVAL for what is malformed,
// and for what nests deeper or holds more than any honest list.
Result<PropertyValue> parseOldStyleList(ByteView contents);

}  // namespace quorvane
