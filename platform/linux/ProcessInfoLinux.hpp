// Facts about this process.
#pragma once

#include "platform/ProcessInfo.hpp"

namespace quorvane {

// The bundle's folder "…/X.app" for an executable "…/X.app/Contents/Linux/<name>", else empty.
std::filesystem::path bundleOfExecutable(const std::filesystem::path& executable);
// The dictionary of "Contents/Info.plist"; empty when there is none or it is no dictionary.
PropertyDictionary propertiesOfBundle(const std::filesystem::path& bundle);

ProcessInfo makeProcessInfo(int argumentCount, char** arguments);

}  // namespace quorvane
