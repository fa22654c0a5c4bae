// Property values as the bus carries them, in both directions.
#pragma once

#include <systemd/sd-bus.h>

#include <optional>

#include "platform/PropertyValue.hpp"

namespace quorvane {

// All return 0 or more, or the bus library's negative error number; the message is of no use after
// an error.
//
// Reading takes one value of any type at the message's place. Integers of every size, object paths
// and signatures become integers and strings; variants are looked through; what has no counterpart
// (descriptors, other structures than a date, dictionaries with other keys than text) is passed
// over and leaves nothing, and is left out of arrays and dictionaries.
int readBusValue(sd_bus_message* message, std::optional<PropertyValue>& value);
// A value of type "a{sv}" or any other dictionary with text keys.
int readBusDictionary(sd_bus_message* message, PropertyDictionary& dictionary);

// As a variant: "b", "x", "d", "s", "ay", "av", "a{sv}", and "(x)" for a date, its nanoseconds
// since 1970 UTC. Text that is not UTF-8 or holds a NUL cannot be sent.
int appendBusVariant(sd_bus_message* message, const PropertyValue& value);
int appendBusDictionary(sd_bus_message* message, const PropertyDictionary& dictionary);

}  // namespace quorvane
