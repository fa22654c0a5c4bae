// Layout of a bundle: "X.app/Contents/Info.plist" and "X.app/Contents/Linux/<program>".
#pragma once

#include <filesystem>
#include <optional>

#include "platform/PropertyValue.hpp"

namespace quorvane {

// The folder "…/X.app" of an executable "…/X.app/Contents/Linux/<name>"; empty for any other path.
std::filesystem::path bundleOfExecutable(const std::filesystem::path& executable);
// The dictionary of "Contents/Info.plist"; empty when it is missing or not a dictionary.
PropertyDictionary propertiesOfBundle(const std::filesystem::path& bundle);
// "Contents/Linux/<CFBundleExecutable>" in the bundle; nullopt when the properties name no
// executable.
std::optional<std::filesystem::path> executableOfBundle(const std::filesystem::path& bundle,
                                                        const PropertyDictionary& properties);

}  // namespace quorvane
