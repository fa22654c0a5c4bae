// Reader and writer of property lists in their file formats.
#pragma once

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Any thread.

// Reads the XML, binary and old-style text formats; the last has only text, data, arrays and
// dictionaries. Fails with EINVAL for other formats, for types that PropertyValue lacks, and for
// lists beyond the limits on depth and number of values.
Result<PropertyValue> parsePropertyList(ByteView contents);
// Writes the XML format. Dates lose fractions of a second. Fails with EINVAL for text with a NUL,
// and with EOVERFLOW for a date more than 68 years from 2001, which the library cannot hold.
Result<Bytes> xmlPropertyList(const PropertyValue& value);

}  // namespace quorvane
