// What a bundle on disk says of itself.
#pragma once

#include <filesystem>

#include "platform/PropertyValue.hpp"

namespace quorvane {

// The dictionary of "Contents/Info.plist"; empty when it cannot be read or is none.
PropertyDictionary propertiesOfBundleMacOS(const std::filesystem::path& bundle);

}  // namespace quorvane
