// The root class, and what fakes and tests need of the runtime.
#include "tests/macos_runtime/fakes/Answers.hpp"

extern "C" {
id class_createInstance(Class, size_t) __attribute__((ns_returns_retained));
BOOL macrt_isKindOfClass(id, Class);
}

namespace macrt {
struct Object;
std::string describe(Object* object);
std::string nameOf(Object* object);
}  // namespace macrt

@implementation NSObject
+ (instancetype)alloc {
    return class_createInstance(self, 0);
}
+ (instancetype)new {
    return [[self alloc] init];
}
+ (Class)class {
    return self;
}
- (instancetype)init {
    return self;
}
- (id)copy {
    return self;
}
- (BOOL)isKindOfClass:(Class)aClass {
    return macrt_isKindOfClass(self, aClass);
}
- (BOOL)isEqual:(id)object {
    return self == object;
}
- (NSString*)description {
    const std::any* const answer = macrt::findAnswer(self, "NSObject", "description");
    if (answer != nullptr) return macrt::fromAnswer<NSString*>(*answer);
    auto* const object = (__bridge macrt::Object*)self;
    return macrt::makeString("<" + macrt::nameOf(object) + ">");
}
@end

@interface NSBlock : NSObject
@end
@implementation NSBlock
- (NSString*)description {
    return @"<block>";
}
@end

namespace macrt {
namespace {
std::vector<std::function<void()>>& resets() {
    static auto& all = *new std::vector<std::function<void()>>;
    return all;
}
}  // namespace

std::string describe(id object) { return describe((__bridge Object*)object); }

AtReset::AtReset(std::function<void()> action) { resets().push_back(std::move(action)); }

void resetFakes() {
    for (const auto& reset : resets()) reset();
}

}  // namespace macrt
