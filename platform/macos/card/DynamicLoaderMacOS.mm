#include "platform/macos/card/CardMacOS.hpp"

#import <Foundation/Foundation.h>
#include <dlfcn.h>

#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

std::optional<std::string> lastError() {
    const char* const text = dlerror();
    return text ? std::optional<std::string>{text} : std::nullopt;
}

std::shared_ptr<const void> arrayOfNumber(std::uint64_t number) {
    NSArray* array = @[ [NSNumber numberWithUnsignedLongLong:number] ];
    return {(__bridge_retained CFTypeRef)array, CFRelease};
}

}  // namespace

DynamicLoader makeDynamicLoaderMacOS() {
    return {.open = [](const char* path) { return dlopen(path, RTLD_NOW); },
            .symbol = [](void* library, const char* name) { return dlsym(library, name); },
            .lastError = lastError,
            .arrayOfNumber = arrayOfNumber};
}

}  // namespace quorvane
