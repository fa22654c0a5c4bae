// Values of the seam as Foundation objects and back. For Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

#include <filesystem>
#include <optional>
#include <string>

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Text that is not UTF-8 becomes empty: the system has no string for it.
NSString* stringFrom(std::string_view text);
// Empty for nil.
std::string textFrom(NSString* string);

NSURL* urlFrom(const std::filesystem::path& path);
// Empty for nil.
std::filesystem::path pathFrom(NSURL* url);

NSData* dataFrom(ByteView bytes);
// One behind the other.
NSMutableData* dataFromParts(std::span<const ByteView> parts);
Bytes bytesFrom(NSData* data);

// Dates beyond what the seam can hold become its first or last.
WallTime wallTimeFrom(NSDate* date);

id objectFrom(const PropertyValue& value);
NSDictionary* dictionaryFrom(const PropertyDictionary& dictionary);
// Nothing for nil and for objects that are no property-list values. Such objects inside an array or
// a dictionary are left out.
std::optional<PropertyValue> valueFrom(id object);
PropertyDictionary propertiesFrom(NSDictionary* dictionary);

// Numbers of Cocoa and of POSIX keep their domains, all others are a service's.
PlatformError errorFrom(NSError* error);

}  // namespace quorvane
