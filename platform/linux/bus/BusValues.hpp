// Conversion of property values to and from bus messages.
#pragma once

#include <systemd/sd-bus.h>

#include "platform/PropertyValue.hpp"

namespace quorvane {

// All functions return 0 or more, or the bus library's negative error number. After an error the
// message is unusable.
//
// Reads a value of type "a{sv}", or any other dictionary with text keys, at the message's current
// position. Integers of all sizes become integers; object paths and signatures become strings;
// variants are unwrapped. Values without a counterpart are skipped, and omitted from arrays and
// dictionaries: descriptors, structures, bytes, dictionaries whose keys are not text, and texts
// beyond 12 MiB in all. Fails with -EMSGSIZE for more than about twelve thousand values.
int readBusDictionary(sd_bus_message* message, PropertyDictionary& dictionary);

// Appends a variant: "b", "x", "d", "s", "av" or "a{sv}". Fails for dates and data, and for text
// that is not UTF-8 or contains a NUL.
int appendBusVariant(sd_bus_message* message, const PropertyValue& value);
int appendBusDictionary(sd_bus_message* message, const PropertyDictionary& dictionary);

}  // namespace quorvane
