// Conversions between platform values and Foundation objects. For Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

#include <filesystem>
#include <optional>
#include <string>

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Returns an empty string for text that is not UTF-8, because the system cannot represent it.
NSString* stringFrom(std::string_view text);
// Empty for nil.
std::string textFrom(NSString* string);

NSURL* urlFrom(const std::filesystem::path& path);
// Empty for nil.
std::filesystem::path pathFrom(NSURL* url);

NSData* dataFrom(ByteView bytes);
// Concatenates the parts.
NSMutableData* dataFromParts(std::span<const ByteView> parts);
Bytes bytesFrom(NSData* data);

// Clamps dates outside the range of WallTime.
WallTime wallTimeFrom(NSDate* date);

id objectFrom(const PropertyValue& value);
NSDictionary* dictionaryFrom(const PropertyDictionary& dictionary);
// Returns nullopt for nil and for objects that are not property-list values. Omits such objects
// from arrays and dictionaries.
std::optional<PropertyValue> valueFrom(id object);
PropertyDictionary propertiesFrom(NSDictionary* dictionary);

// Cocoa and POSIX errors keep their domains; all others get the service domain.
PlatformError errorFrom(NSError* error);

}  // namespace quorvane
