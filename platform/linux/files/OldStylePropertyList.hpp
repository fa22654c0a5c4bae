// Parser of old-style property lists, which the system's library does not read. They are text:
// { key = "value"; list = (a, b); data = <00ff>; }
#pragma once

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Whether the first significant character opens a dictionary or an array, as old-style lists do.
bool isOldStyleList(ByteView contents);
// Each value is text, data, an array or a dictionary. Fails with EINVAL for malformed lists and for
// lists beyond the limits on depth and number of values.
Result<PropertyValue> parseOldStyleList(ByteView contents);

}  // namespace quorvane
