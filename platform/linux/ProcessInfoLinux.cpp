#include "platform/linux/ProcessInfoLinux.hpp"

#include <unistd.h>

#include "platform/RegularFiles.hpp"
#include "platform/linux/FoldersLinux.hpp"
#include "platform/linux/PropertyListLinux.hpp"

namespace quorvane {
namespace {

// What the core asks of the system's version is whether the card can stand on its lock screen, and
// it asks in the numbers of the other edition. This edition stands in for its first supported
// version; the kernel's own number would switch the card off.
constexpr SystemVersion kInterfaceVersion{26, 0, 0};

constexpr std::uint64_t kLargestPropertyList = 1 << 20;

}  // namespace

std::filesystem::path bundleOfExecutable(const std::filesystem::path& executable) {
    const auto platform = executable.parent_path();
    const auto contents = platform.parent_path();
    const auto bundle = contents.parent_path();
    const bool isInBundle = platform.filename() == "Linux" && contents.filename() == "Contents" &&
                            bundle.extension() == ".app";
    return isInBundle ? bundle : std::filesystem::path{};
}

PropertyDictionary propertiesOfBundle(const std::filesystem::path& bundle) {
    if (bundle.empty()) return {};
    const auto file =
        makeLiveRegularFiles().read(bundle / "Contents" / "Info.plist", kLargestPropertyList);
    if (!file) return {};
    auto list = parsePropertyList(file->contents);
    if (!list || !list->as<PropertyDictionary>()) return {};
    return std::get<PropertyDictionary>(std::move(list->value));
}

std::optional<std::filesystem::path> executableOfBundle(const std::filesystem::path& bundle,
                                                        const PropertyDictionary& properties) {
    const auto* name = find<std::string>(properties, "CFBundleExecutable");
    if (bundle.empty() || name == nullptr || !isPlainFileName(*name)) return std::nullopt;
    return bundle / "Contents" / "Linux" / *name;
}

ProcessInfo makeProcessInfo(int argumentCount, char** arguments) {
    std::error_code none;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", none);
    ProcessInfo info{.arguments = {arguments, arguments + argumentCount},
                     .executable = executable,
                     .pid = getpid(),
                     .systemVersion = kInterfaceVersion,
                     .bundle = bundleOfExecutable(executable),
                     .bundleProperties = {}};
    info.bundleProperties = propertiesOfBundle(info.bundle);
    return info;
}

}  // namespace quorvane
