#include "AddOnKit/AddOnIdentity.hpp"

#include "AddOnKit/SupportedMacOS.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {
namespace {

std::string storedInstallID(const UserDefaults& defaults,
                            const std::function<std::string()>& makeUUID) {
    constexpr const char* kKey = "installID";
    const auto stored = defaults.get(kKey);
    const std::string* const text = stored ? stored->as<std::string>() : nullptr;
    if (text != nullptr && !text->empty()) return *text;
    const std::string made = makeUUID();
    defaults.set(kKey, PropertyValue{made});
    // A process that is ended by a signal soon after would otherwise be another installation next
    // time. If the disk refuses, that is all that is lost.
    (void)defaults.synchronize();
    return made;
}

std::string versionOf(const PropertyDictionary& bundleProperties) {
    const auto* const version = find<std::string>(bundleProperties, "CFBundleShortVersionString");
    return version == nullptr ? "0" : *version;
}

std::string dotted(const SystemVersion& version) {
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
           std::to_string(version.patch);
}

}  // namespace

AddOnIdentity AddOnIdentity::make(const ProcessInfo& process, const UserDefaults& defaults,
                                  const std::function<std::string()>& makeUUID) {
    return {.installID = storedInstallID(defaults, makeUUID),
            .addOnVersion = versionOf(process.bundleProperties),
            .macOSVersion = dotted(process.systemVersion),
            .supportsThisMacOS = SupportedMacOS::supports(process.systemVersion.major),
            .supersedeOnce = SupersedeOnce{
                AddOnSignals::contains(process.arguments, AddOnSignals::kInstalledArgument)}};
}

}  // namespace quorvane
