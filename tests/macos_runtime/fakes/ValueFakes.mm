// Numbers, data, dates and the like, which work.
#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include <variant>

#include "tests/macos_runtime/fakes/SystemFakes.hpp"

@implementation NSValue
+ (NSValue*)valueWithCATransform3D:(CATransform3D)t {
    NSValue* const value = [NSValue new];
    const std::string text = macrt::valueText(@encode(CATransform3D), &t);
    macrt::setAnswer(value, "description", macrt::makeString(text));
    return value;
}
@end

@implementation NSNumber {
@package
    std::variant<bool, long long, unsigned long long, double> value_;
}
static NSNumber* numberOf(auto value) {
    NSNumber* const number = [NSNumber new];
    number->value_ = value;
    return number;
}
+ (NSNumber*)numberWithBool:(BOOL)value {
    return numberOf(value);
}
+ (NSNumber*)numberWithInt:(int)value {
    return numberOf(static_cast<long long>(value));
}
+ (NSNumber*)numberWithLongLong:(long long)value {
    return numberOf(value);
}
+ (NSNumber*)numberWithUnsignedLongLong:(unsigned long long)value {
    return numberOf(value);
}
+ (NSNumber*)numberWithDouble:(double)value {
    return numberOf(value);
}
- (BOOL)boolValue {
    return std::visit([](auto value) { return value != 0; }, value_);
}
- (long long)longLongValue {
    return std::visit([](auto value) { return static_cast<long long>(value); }, value_);
}
- (double)doubleValue {
    return std::visit([](auto value) { return static_cast<double>(value); }, value_);
}
- (NSString*)description {
    const auto text = [](auto value) { return macrt::valueText(@encode(decltype(value)), &value); };
    return macrt::makeString(std::visit(text, value_));
}
@end

@implementation NSData {
@package
    std::string bytes_;
}
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length {
    NSData* const data = [self new];
    data->bytes_.assign(static_cast<const char*>(bytes), length);
    return data;
}
+ (instancetype)dataWithContentsOfURL:(NSURL*)url
                              options:(NSDataReadingOptions)readOptionsMask
                                error:(NSError**)errorPtr {
    const std::string path = macrt::textOf(url.path);
    macrt::note("read " + path + " " + std::to_string(readOptionsMask));
    const auto file = macrt::files().find(path);
    if (file != macrt::files().end())
        return [NSData dataWithBytes:file->second.data() length:file->second.size()];
    if (errorPtr != nullptr) *errorPtr = macrt::makeError(NSCocoaErrorDomain, 260, @"no such file");
    return nil;
}
- (BOOL)writeToURL:(NSURL*)url
           options:(NSDataWritingOptions)writeOptionsMask
             error:(NSError**)errorPtr {
    const std::string path = macrt::textOf(url.path);
    macrt::note("write " + path + " " + std::to_string(writeOptionsMask));
    if (!macrt::succeeds("NSData", "writeToURL:options:error:", errorPtr)) return NO;
    macrt::files()[path] = bytes_;
    return YES;
}
- (NSUInteger)length {
    return bytes_.size();
}
- (const void*)bytes {
    return bytes_.data();
}
- (NSString*)description {
    return macrt::makeString("<" + std::to_string(bytes_.size()) + " bytes>");
}
@end

@implementation NSMutableData
+ (instancetype)dataWithCapacity:(NSUInteger)aNumItems {
    macrt::note("data of " + std::to_string(aNumItems));
    return [self new];
}
- (void*)mutableBytes {
    return bytes_.data();
}
- (void)appendBytes:(const void*)bytes length:(NSUInteger)length {
    bytes_.append(static_cast<const char*>(bytes), length);
}
@end

@implementation NSDate
@dynamic timeIntervalSince1970;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)secs {
    NSDate* const date = [self new];
    macrt::setAnswer(date, "timeIntervalSince1970", secs);
    return date;
}
@end

@implementation NSURL {
    std::string path_;
}
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDir
                                relativeToURL:(NSURL*)baseURL {
    NSURL* const url = [NSURL new];
    url->path_ = path;
    return url;
}
- (const char*)fileSystemRepresentation {
    return path_.c_str();
}
- (NSString*)path {
    return macrt::makeString(path_);
}
- (NSString*)description {
    return macrt::makeString("file://" + path_);
}
@end

@implementation NSAttributedString
- (instancetype)initWithString:(NSString*)str attributes:(NSDictionary*)attrs {
    const std::string text = macrt::describe(str) + " " + macrt::describe(attrs);
    macrt::setAnswer(self, "description", macrt::makeString(text));
    return self;
}
@end

// Core Foundation's view of the same objects. Type numbers are the test's own.
extern "C" {
void* objc_retain(const void*);
void objc_release(const void*);
void* objc_autorelease(const void*);

CFTypeRef CFRetain(CFTypeRef cf) { return objc_retain(cf); }
void CFRelease(CFTypeRef cf) {
    if (cf == nullptr) return macrt::fault("CFRelease of NULL");
    objc_release(cf);
}
CFTypeRef CFAutorelease(CFTypeRef arg) { return objc_autorelease(arg); }
CFTypeID CFBooleanGetTypeID() { return 21; }
CFTypeID CFGetTypeID(CFTypeRef cf) {
    const id object = (__bridge id)cf;
    const bool isBoolean = [object isKindOfClass:NSNumber.class] &&
                           std::holds_alternative<bool>(((NSNumber*)object)->value_);
    return isBoolean ? CFBooleanGetTypeID() : 22;
}
Boolean CFNumberIsFloatType(CFNumberRef number) {
    return std::holds_alternative<double>(((__bridge NSNumber*)number)->value_);
}
}

namespace macrt {

NSError* makeError(NSString* domain, NSInteger code, NSString* description) {
    NSError* const error = [NSError new];
    setAnswer(error, "domain", domain);
    setAnswer(error, "code", code);
    setAnswer(error, "localizedDescription", description);
    return error;
}

}  // namespace macrt
