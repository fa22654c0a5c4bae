#include "platform/linux/files/BundleLayout.hpp"

#include "platform/RegularFiles.hpp"
#include "platform/linux/files/FoldersLinux.hpp"
#include "platform/linux/files/PropertyListLinux.hpp"

namespace quorvane {
namespace {

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

}  // namespace quorvane
