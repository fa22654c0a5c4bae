// Strings that work, literals of the compiler among them.
#include <map>

#include "tests/macos_runtime/fakes/Fakes.hpp"

@implementation NSString {
    std::string text_;
}
- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)len
                     encoding:(NSStringEncoding)encoding {
    text_.assign(static_cast<const char*>(bytes), len);
    return self;
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
    std::string& text = converted[literal];
    if (!text.empty()) return text.c_str();
    const auto* const units = static_cast<const char16_t*>(literal->text);
    // The card's literals have no characters that take two units.
    for (long i = 0; i < literal->length; ++i) {
        const auto unit = static_cast<unsigned>(units[i]);
        if (unit < 0x80) {
            text += static_cast<char>(unit);
            continue;
        }
        if (unit >= 0x800) text += static_cast<char>(0xE0 | unit >> 12);
        text += static_cast<char>(unit < 0x800 ? 0xC0 | unit >> 6 : 0x80 | (unit >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (unit & 0x3F));
    }
    return text.c_str();
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
