#include "host/addon/AddOnInstallation.hpp"

#include <algorithm>
#include <system_error>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "shared/AddOnInstallLocation.hpp"

namespace quorvane {
namespace {

namespace fs = std::filesystem;

// Whether the folder is empty or holds only a bundle's "Contents".
bool mayBeLeftOfBundle(const fs::path& folder) {
    std::error_code error;
    fs::directory_iterator place{folder, error};
    return !error && std::all_of(place, fs::directory_iterator{}, [](const auto& entry) {
        return entry.path().filename() == "Contents";
    });
}

}  // namespace

std::optional<std::string> addOnVersionOf(const fs::path& bundle, const BundleFiles& files) {
    const PropertyDictionary properties = files.properties(bundle);
    const auto* identifier = find<std::string>(properties, "CFBundleIdentifier");
    if (identifier == nullptr || *identifier != kAddOnBundleIdentifier) return std::nullopt;
    const auto* version = find<std::string>(properties, "CFBundleShortVersionString");
    return version == nullptr ? "-" : *version;
}

AddOnInstallation AddOnInstallation::inspect(const fs::path& applicationSupport,
                                             const BundleFiles& files) {
    AddOnInstallation place{
        .supportDirectory = AddOnInstallLocation::supportDirectory(applicationSupport),
        .bundle = AddOnInstallLocation::bundle(applicationSupport)};
    const auto foreign = [&](const fs::path& path, const char* what) {
        place.state = State::foreign;
        place.problem = path.string() + " is " + what;
        return place;
    };
    for (const fs::path& folder : {place.supportDirectory, place.bundle}) {
        std::error_code error;
        const auto status = fs::symlink_status(folder, error);
        if (status.type() == fs::file_type::not_found) return place;
        if (error) return foreign(folder, "not readable");
        if (fs::is_symlink(status)) return foreign(folder, "a symbolic link");
        if (!fs::is_directory(status)) return foreign(folder, "not a folder");
    }
    if (const auto version = addOnVersionOf(place.bundle, files)) {
        place.state = State::installed;
        place.version = *version;
    } else if (files.properties(place.bundle).empty() && mayBeLeftOfBundle(place.bundle)) {
        place.state = State::damaged;
    } else {
        return foreign(place.bundle, "not the add-on");
    }
    return place;
}

std::optional<fs::path> bundleToInstall(const fs::path& program, const BundleFiles& files) {
    const fs::path above = program.parent_path().parent_path();
    for (const fs::path& folder : {above, above / "lib" / "quorvane"})
        if (auto bundle = AddOnInstallLocation::bundleIn(folder); addOnVersionOf(bundle, files))
            return bundle;
    return std::nullopt;
}

}  // namespace quorvane
