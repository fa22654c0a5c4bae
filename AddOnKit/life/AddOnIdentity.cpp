#include "AddOnKit/life/AddOnIdentity.hpp"

#include "shared/AddOnSignals.hpp"

namespace quorvane {
namespace {

std::string storedInstallID(const UserDefaults& defaults,
                            const std::function<std::string()>& makeUUID, const Logger& log) {
    constexpr const char* kKey = "installID";
    const auto stored = defaults.get(kKey);
    const std::string* const text = stored ? stored->as<std::string>() : nullptr;
    if (text != nullptr && !text->empty()) return *text;
    const std::string made = makeUUID();
    defaults.set(kKey, PropertyValue{made});
    // Written at once, because a signal may soon end the process. If the write is lost, the next
    // launch counts as another installation.
    if (const auto written = defaults.synchronize(); !written)
        log.error("link: the install identifier was not stored: %{public}s",
                  errorText(written.error()));
    return made;
}

std::string versionOf(const PropertyDictionary& bundleProperties) {
    const auto* const version = find<std::string>(bundleProperties, "CFBundleShortVersionString");
    return version == nullptr ? "0" : *version;
}

// Newer versions are unsupported too, because what lies above their lock screen is not known yet.
bool isSupported(const SystemVersion& version) {
    return version.major == 26 || version.major == 27;
}

std::string dotted(const SystemVersion& version) {
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
           std::to_string(version.patch);
}

}  // namespace

AddOnIdentity AddOnIdentity::make(const ProcessInfo& process, const UserDefaults& defaults,
                                  const std::function<std::string()>& makeUUID, const Logger& log) {
    return {.installID = storedInstallID(defaults, makeUUID, log),
            .addOnVersion = versionOf(process.bundleProperties),
            .macOSVersion = dotted(process.systemVersion),
            .supportsThisMacOS = isSupported(process.systemVersion),
            .supersedeOnce = SupersedeOnce{
                AddOnSignals::contains(process.arguments, AddOnSignals::kInstalledArgument)}};
}

}  // namespace quorvane
