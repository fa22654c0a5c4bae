// Strings that work, literals of the compiler among them.
#include <filesystem>
#include <map>

#include "platform/Character.hpp"
#include "tests/macos_runtime/fakes/Fakes.hpp"

@implementation NSString {
    std::string text_;
}
- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)len
                     encoding:(NSStringEncoding)encoding {
    text_.assign(static_cast<const char*>(bytes), len);
    return quorvane::isValidUTF8(text_) ? self : nil;
}
- (const char*)UTF8String {
    return text_.c_str();
}
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)enc {
    return text_.size();
}
- (BOOL)isEqualToString:(NSString*)aString {
    return [self isEqual:aString];
}
- (BOOL)isEqual:(id)object {
    return [object isKindOfClass:NSString.class] &&
           macrt::textOf(self) == macrt::textOf((NSString*)object);
}
- (NSString*)description {
    return self;
}
@end

// What @"..." compiles to.
struct LiteralString {
    Class isa;
    int flags;
    const void* text;
    long length;
};

@interface NSConstantString : NSString
@end
@implementation NSConstantString
- (const char*)UTF8String {
    constexpr int kIsUTF16 = 0x7D0;  // as soon as one character is not ASCII
    const auto* const literal = (__bridge const LiteralString*)self;
    if (literal->flags != kIsUTF16) return static_cast<const char*>(literal->text);
    static auto& converted = *new std::map<const void*, std::string>;
    const auto* const units = static_cast<const char16_t*>(literal->text);
    const std::u16string_view text{units, static_cast<std::size_t>(literal->length)};
    return converted.try_emplace(literal, std::filesystem::path{text}.string())
        .first->second.c_str();
}
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)enc {
    return std::string_view{self.UTF8String}.size();
}
@end

namespace macrt {

NSString* makeString(std::string_view text) {
    return [[NSString alloc] initWithBytes:text.data()
                                    length:text.size()
                                  encoding:NSUTF8StringEncoding];
}

std::string textOf(NSString* string) { return string == nil ? "" : string.UTF8String; }

}  // namespace macrt
