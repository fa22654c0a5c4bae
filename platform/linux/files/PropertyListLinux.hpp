// Property lists as files hold them.
#pragma once

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Any thread.

// The XML, the binary and the old-style text form, whose values are texts, data, arrays and
// dictionaries. Fails with EINVAL for what is none of them, for types that properties do not have,
// and for lists that nest deeper or hold more than any honest one.
Result<PropertyValue> parsePropertyList(ByteView contents);
// The XML form. Dates lose their fractions of a second. Fails with EINVAL for text with a NUL, and
// with EOVERFLOW for a date more than 68 years away from 2001, which the library cannot hold.
Result<Bytes> xmlPropertyList(const PropertyValue& value);

}  // namespace quorvane
