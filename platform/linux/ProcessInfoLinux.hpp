// Facts about this process.
#pragma once

#include <optional>

#include "platform/ProcessInfo.hpp"

namespace quorvane {

// The bundle's folder "…/X.app" for an executable "…/X.app/Contents/Linux/<name>", else empty.
std::filesystem::path bundleOfExecutable(const std::filesystem::path& executable);
// The dictionary of "Contents/Info.plist"; empty when there is none or it is no dictionary.
PropertyDictionary propertiesOfBundle(const std::filesystem::path& bundle);
// "Contents/Linux/<CFBundleExecutable>" in it; nothing when the properties name none.
std::optional<std::filesystem::path> executableOfBundle(const std::filesystem::path& bundle,
                                                        const PropertyDictionary& properties);

ProcessInfo makeProcessInfo(int argumentCount, char** arguments);

}  // namespace quorvane
