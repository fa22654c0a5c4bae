#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/Seconds.hpp"

#include <algorithm>
#include <limits>

#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

NSArray* arrayFrom(const PropertyArray& array) {
    NSMutableArray* objects = [NSMutableArray arrayWithCapacity:array.size()];
    for (const PropertyValue& value : array) [objects addObject:objectFrom(value)];
    return objects;
}

NSDate* dateFrom(WallTime time) {
    return [NSDate dateWithTimeIntervalSince1970:secondsOf(time.time_since_epoch())];
}

PropertyArray elementsFrom(NSArray* array) {
    PropertyArray values;
    for (id object in array)
        if (auto value = valueFrom(object)) values.push_back(*std::move(value));
    return values;
}

PropertyValue numberFrom(NSNumber* number) {
    const CFTypeRef object = (__bridge CFTypeRef)number;
    if (CFGetTypeID(object) == CFBooleanGetTypeID()) return {static_cast<bool>(number.boolValue)};
    if (CFNumberIsFloatType(static_cast<CFNumberRef>(object))) return {number.doubleValue};
    return {std::int64_t{number.longLongValue}};
}

struct MakeObject {
    id operator()(bool value) const { return [NSNumber numberWithBool:value]; }
    id operator()(std::int64_t value) const { return [NSNumber numberWithLongLong:value]; }
    id operator()(double value) const { return [NSNumber numberWithDouble:value]; }
    id operator()(const std::string& value) const { return stringFrom(value); }
    id operator()(WallTime value) const { return dateFrom(value); }
    id operator()(const Bytes& value) const { return dataFrom(value); }
    id operator()(const PropertyArray& value) const { return arrayFrom(value); }
    id operator()(const PropertyDictionary& value) const { return dictionaryFrom(value); }
};

PlatformError::Domain domainOf(NSError* error) {
    if ([error.domain isEqualToString:NSCocoaErrorDomain]) return PlatformError::Domain::cocoa;
    if ([error.domain isEqualToString:NSPOSIXErrorDomain]) return PlatformError::Domain::posix;
    return PlatformError::Domain::service;
}

}  // namespace

NSString* stringFrom(std::string_view text) {
    NSString* string = [[NSString alloc] initWithBytes:text.data()
                                                length:text.size()
                                              encoding:NSUTF8StringEncoding];
    return string ? string : @"";
}

std::string textFrom(NSString* string) {
    // Also null for text with half a surrogate pair.
    const char* const text = string.UTF8String;
    if (!text) return {};
    return {text, [string lengthOfBytesUsingEncoding:NSUTF8StringEncoding]};
}

NSURL* urlFrom(const std::filesystem::path& path) {
    return [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                          isDirectory:NO
                                        relativeToURL:nil];
}

std::filesystem::path pathFrom(NSURL* url) {
    const char* const path = url.fileSystemRepresentation;
    return path ? path : std::filesystem::path{};
}

NSData* dataFrom(ByteView bytes) { return [NSData dataWithBytes:bytes.data() length:bytes.size()]; }

NSMutableData* dataFromParts(std::span<const ByteView> parts) {
    NSUInteger length = 0;
    for (const ByteView part : parts) length += part.size();
    NSMutableData* const data = [NSMutableData dataWithCapacity:length];
    for (const ByteView part : parts) [data appendBytes:part.data() length:part.size()];
    return data;
}

Bytes bytesFrom(NSData* data) {
    return copyOf({static_cast<const std::byte*>(data.bytes), data.length});
}

WallTime wallTimeFrom(NSDate* date) {
    constexpr double kLimit = 9.2e9;  // seconds; 64 bits of nanoseconds hold a little more
    const double seconds = std::clamp(date.timeIntervalSince1970, -kLimit, kLimit);
    return WallTime{durationOf(seconds)};
}

id objectFrom(const PropertyValue& value) { return std::visit(MakeObject{}, value.value); }

NSDictionary* dictionaryFrom(const PropertyDictionary& dictionary) {
    NSMutableDictionary* objects = [NSMutableDictionary dictionaryWithCapacity:dictionary.size()];
    for (const auto& [key, value] : dictionary) objects[stringFrom(key)] = objectFrom(value);
    return objects;
}

std::optional<PropertyValue> valueFrom(id object) {
    if ([object isKindOfClass:[NSNumber class]]) return numberFrom(object);
    if ([object isKindOfClass:[NSString class]]) return PropertyValue{textFrom(object)};
    if ([object isKindOfClass:[NSDate class]]) return PropertyValue{wallTimeFrom(object)};
    if ([object isKindOfClass:[NSData class]]) return PropertyValue{bytesFrom(object)};
    if ([object isKindOfClass:[NSArray class]]) return PropertyValue{elementsFrom(object)};
    if ([object isKindOfClass:[NSDictionary class]]) return PropertyValue{propertiesFrom(object)};
    return std::nullopt;
}

PropertyDictionary propertiesFrom(NSDictionary* dictionary) {
    PropertyDictionary properties;
    for (id key in dictionary) {
        if (![key isKindOfClass:[NSString class]]) continue;
        if (auto value = valueFrom(dictionary[key]))
            properties.emplace(textFrom(key), *std::move(value));
    }
    return properties;
}

PlatformError errorFrom(NSError* error) {
    return {.domain = domainOf(error),
            .code = static_cast<int>(error.code),
            .description = textFrom(error.localizedDescription)};
}

}  // namespace quorvane
