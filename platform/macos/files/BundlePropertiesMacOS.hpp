// Properties of a bundle on disk.
#pragma once

#include <filesystem>

#include "platform/PropertyValue.hpp"

namespace quorvane {

// The dictionary of "Contents/Info.plist"; empty when it is unreadable or not a dictionary.
PropertyDictionary propertiesOfBundleMacOS(const std::filesystem::path& bundle);

}  // namespace quorvane
