// The shared container, whole files, bundles, preferences and random bytes.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/FileStore.hpp"
#include "platform/PropertyValue.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

FileStore makeFileStoreMacOS();
FillRandom makeFillRandomMacOS();
std::string makeUUIDMacOS();

// The dictionary of "Contents/Info.plist"; empty when it is unreadable or not a dictionary.
PropertyDictionary propertiesOfBundleMacOS(const std::filesystem::path& bundle);

// Defaults of this application, whose preferences domain is `domain`.
UserDefaults makeStandardDefaultsMacOS(const std::string& domain);
// Defaults of a suite; nullopt when the system refuses the name.
std::optional<UserDefaults> openSuiteMacOS(const std::string& suite);

}  // namespace quorvane
