// Numbers, data, dates and the like, which work.
#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include <cstdio>

#include "tests/macos_runtime/fakes/SystemFakes.hpp"

@implementation NSValue {
    CATransform3D transform_;
}
+ (NSValue*)valueWithCATransform3D:(CATransform3D)t {
    NSValue* const value = [NSValue new];
    value->transform_ = t;
    return value;
}
- (NSString*)description {
    const CATransform3D& t = transform_;
    char text[128];
    std::snprintf(text, sizeof text, "<scale %g %g, move %g %g>", t.m11, t.m22, t.m41, t.m42);
    return macrt::makeString(text);
}
@end

namespace {
enum class Kind { boolean, whole, positive, real };
}
@implementation NSNumber {
@package
    Kind kind_;
    long long whole_;
    double real_;
}
+ (NSNumber*)numberWithBool:(BOOL)value {
    NSNumber* const number = [NSNumber new];
    number->whole_ = value;
    return number;
}
+ (NSNumber*)numberWithInt:(int)value {
    return [self numberWithLongLong:value];
}
+ (NSNumber*)numberWithLongLong:(long long)value {
    NSNumber* const number = [NSNumber new];
    number->kind_ = Kind::whole;
    number->whole_ = value;
    return number;
}
+ (NSNumber*)numberWithUnsignedLongLong:(unsigned long long)value {
    NSNumber* const number = [NSNumber new];
    number->kind_ = Kind::positive;
    number->whole_ = static_cast<long long>(value);
    return number;
}
+ (NSNumber*)numberWithDouble:(double)value {
    NSNumber* const number = [NSNumber new];
    number->kind_ = Kind::real;
    number->real_ = value;
    return number;
}
- (BOOL)boolValue {
    return kind_ == Kind::real ? real_ != 0 : whole_ != 0;
}
- (long long)longLongValue {
    return kind_ == Kind::real ? static_cast<long long>(real_) : whole_;
}
- (double)doubleValue {
    if (kind_ == Kind::positive)
        return static_cast<double>(static_cast<unsigned long long>(whole_));
    return kind_ == Kind::real ? real_ : static_cast<double>(whole_);
}
- (BOOL)isEqual:(id)object {
    return [object isKindOfClass:NSNumber.class] &&
           self.doubleValue == ((NSNumber*)object).doubleValue;
}
- (NSString*)description {
    if (kind_ == Kind::boolean) return self.boolValue ? @"YES" : @"NO";
    if (kind_ == Kind::whole) return macrt::makeString(std::to_string(whole_));
    if (kind_ == Kind::positive)
        return macrt::makeString(std::to_string(static_cast<unsigned long long>(whole_)));
    char text[32];
    std::snprintf(text, sizeof text, "%.15g", real_);
    return macrt::makeString(text);
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
    return [self new];
}
- (void)appendBytes:(const void*)bytes length:(NSUInteger)length {
    bytes_.append(static_cast<const char*>(bytes), length);
}
@end

@interface NSDate ()
@property(readwrite) NSTimeInterval timeIntervalSince1970;
@end
@implementation NSDate
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)secs {
    NSDate* const date = [self new];
    date.timeIntervalSince1970 = secs;
    return date;
}
@end

@interface NSURL ()
@property(readwrite, copy) NSString* path;
@end
@implementation NSURL
+ (NSURL*)fileURLWithPath:(NSString*)path {
    NSURL* const url = [NSURL new];
    url.path = path;
    return url;
}
- (NSString*)description {
    return macrt::makeString("file://" + macrt::textOf(self.path));
}
@end

@implementation NSAttributedString {
    NSString* text_;
    NSDictionary* attributes_;
}
- (instancetype)initWithString:(NSString*)str attributes:(NSDictionary*)attrs {
    text_ = str;
    attributes_ = attrs;
    return self;
}
- (NSString*)description {
    return macrt::makeString(macrt::describe(text_) + " " + macrt::describe(attributes_));
}
@end

// Core Foundation's view of the same objects. Type numbers are the test's own.
extern "C" {
void* objc_retain(const void*);
void objc_release(const void*);

CFTypeRef CFRetain(CFTypeRef cf) { return objc_retain(cf); }
void CFRelease(CFTypeRef cf) {
    if (cf == nullptr) return macrt::fault("CFRelease of NULL");
    objc_release(cf);
}
CFTypeID CFBooleanGetTypeID() { return 21; }
CFTypeID CFGetTypeID(CFTypeRef cf) {
    const id object = (__bridge id)cf;
    const bool isBoolean =
        [object isKindOfClass:NSNumber.class] && ((NSNumber*)object)->kind_ == Kind::boolean;
    return isBoolean ? CFBooleanGetTypeID() : 22;
}
Boolean CFNumberIsFloatType(CFNumberRef number) {
    return ((__bridge NSNumber*)number)->kind_ == Kind::real;
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
