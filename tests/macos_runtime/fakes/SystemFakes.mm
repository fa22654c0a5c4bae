// The application, files, defaults and states, as far as they keep what they are told.
#include "tests/macos_runtime/fakes/SystemFakes.hpp"

#import <AppKit/AppKit.h>
#import <Security/Security.h>
#include <notify.h>

#include <cstring>

namespace {
const macrt::AtReset reset{[] {
    macrt::files().clear();
    macrt::defaults().clear();
    macrt::whileRunning() = nullptr;
}};
}  // namespace

@interface NSApplication () <Recorded>
@end
@implementation NSApplication
@dynamic userInterfaceLayoutDirection;
- (void)run {
    if (macrt::whileRunning()) macrt::whileRunning()();
}
@end

@interface NSFileManager () <Recorded>
@end
@implementation NSFileManager
- (BOOL)linkItemAtURL:(NSURL*)srcURL toURL:(NSURL*)dstURL error:(NSError**)error {
    if (!macrt::succeeds("NSFileManager", "linkItemAtURL:toURL:error:", error)) return NO;
    const bool isNew =
        macrt::files()
            .emplace(macrt::textOf(dstURL.path), macrt::files()[macrt::textOf(srcURL.path)])
            .second;
    if (!isNew) *error = macrt::makeError(NSCocoaErrorDomain, 516, @"exists");
    return isNew;
}
- (BOOL)removeItemAtURL:(NSURL*)URL error:(NSError**)error {
    if (!macrt::succeeds("NSFileManager", "removeItemAtURL:error:", error)) return NO;
    const std::string place = macrt::textOf(URL.path);
    std::erase_if(macrt::files(), [&](const auto& file) {
        return file.first == place || file.first.starts_with(place + "/");
    });
    return YES;
}
- (BOOL)fileExistsAtPath:(NSString*)path {
    return macrt::files().contains(macrt::textOf(path));
}
@end

@interface NSUserDefaults () <Recorded>
@end
@implementation NSUserDefaults {
    std::string domain_;
}
- (instancetype)initWithSuiteName:(NSString*)suitename {
    domain_ = macrt::textOf(suitename);
    return macrt::answered<BOOL>(nil, "", "no suites") ? nil : self;
}
- (NSDictionary*)dictionaryRepresentation {
    NSMutableDictionary* const all = [NSMutableDictionary dictionaryWithCapacity:1];
    for (const auto& [key, value] : macrt::defaults()[domain_]) all[macrt::makeString(key)] = value;
    return all;
}
- (id)objectForKey:(NSString*)defaultName {
    auto& domain = macrt::defaults()[domain_];
    const auto found = domain.find(macrt::textOf(defaultName));
    return found == domain.end() ? nil : found->second;
}
- (void)setObject:(id)value forKey:(NSString*)defaultName {
    macrt::defaults()[domain_][macrt::textOf(defaultName)] = value;
}
- (void)removeObjectForKey:(NSString*)defaultName {
    macrt::defaults()[domain_].erase(macrt::textOf(defaultName));
}
@end

extern "C" {

const SecRandomRef kSecRandomDefault = nullptr;
int SecRandomCopyBytes(SecRandomRef, size_t count, void* bytes) {
    std::memset(bytes, 0xA5, count);
    return macrt::answered<int>(nil, "", "SecRandomCopyBytes");
}

uint32_t notify_register_check(const char* name, int* out_token) {
    *out_token = 7;
    macrt::note(std::string{"notify_register_check "} + name);
    return macrt::answered<uint32_t>(nil, "", "notify_register_check");
}

uint32_t notify_get_state(int token, uint64_t* state64) {
    *state64 = macrt::answered<uint64_t>(nil, "", "notify state");
    return macrt::called<uint32_t>("notify_get_state", token);
}
}

namespace macrt {
std::map<std::string, std::string>& files() {
    static auto& all = *new std::map<std::string, std::string>;
    return all;
}
std::map<std::string, std::map<std::string, id>>& defaults() {
    static auto& all = *new std::map<std::string, std::map<std::string, id>>;
    return all;
}
std::function<void()>& whileRunning() {
    static auto& only = *new std::function<void()>;
    return only;
}
}  // namespace macrt
