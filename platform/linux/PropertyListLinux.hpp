// Property lists as files hold them.
#pragma once

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Any thread.

// The XML and the binary form. Fails with EINVAL for what is neither, for types that properties do
// not have, and for lists that nest deeper or hold more than any honest one: the library would
// follow those until the stack or the memory ends.
Result<PropertyValue> parsePropertyList(ByteView contents);
// The XML form. Dates lose their fractions of a second. Fails with EINVAL for text with a NUL, and
// with EOVERFLOW for a date more than 68 years away from 2001, which the library cannot hold.
Result<Bytes> xmlPropertyList(const PropertyValue& value);

}  // namespace quorvane
