#include "platform/macos/files/FilesMacOS.hpp"

#import <Foundation/Foundation.h>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

void set(NSUserDefaults* defaults, const std::string& key,
         const std::optional<PropertyValue>& value) {
    if (value)
        [defaults setObject:objectFrom(*value) forKey:stringFrom(key)];
    else
        [defaults removeObjectForKey:stringFrom(key)];
}

Result<void> synchronize(NSString* domain) {
    // The call reports only success or failure.
    if (CFPreferencesAppSynchronize((__bridge CFStringRef)domain)) return {};
    return std::unexpected{
        PlatformError{.domain = PlatformError::Domain::service,
                      .code = 0,
                      .description = "the preferences could not be synchronized"}};
}

// One call for all keys, because the system's daemon may deliver new values between two calls.
PropertyDictionary valuesTogether(NSUserDefaults* defaults, const std::vector<std::string>& keys) {
    NSDictionary* all = [defaults dictionaryRepresentation];
    PropertyDictionary values;
    for (const std::string& key : keys)
        if (auto value = valueFrom(all[stringFrom(key)])) values.emplace(key, *std::move(value));
    return values;
}

UserDefaults tableOf(NSUserDefaults* defaults, NSString* domain) {
    return {.get =
                [defaults](const std::string& key) {
                    return valueFrom([defaults objectForKey:stringFrom(key)]);
                },
            .getTogether =
                [defaults](const std::vector<std::string>& keys) {
                    return valuesTogether(defaults, keys);
                },
            .set = [defaults](const std::string& key,
                              std::optional<PropertyValue> value) { set(defaults, key, value); },
            .removeDomain = [defaults, domain] { [defaults removePersistentDomainForName:domain]; },
            .synchronize = [domain] { return synchronize(domain); }};
}

}  // namespace

UserDefaults makeStandardDefaultsMacOS(const std::string& domain) {
    return tableOf(NSUserDefaults.standardUserDefaults, stringFrom(domain));
}

std::optional<UserDefaults> openSuiteMacOS(const std::string& suite) {
    NSString* name = stringFrom(suite);
    NSUserDefaults* defaults = [[NSUserDefaults alloc] initWithSuiteName:name];
    if (!defaults) return std::nullopt;
    return tableOf(defaults, name);
}

}  // namespace quorvane
