// On this system Quorvane itself puts the add-on in its place.
#include "platform/BundleFiles.hpp"

namespace quorvane {
namespace {

std::unexpected<PlatformError> unavailable() {
    return std::unexpected{
        PlatformError{.domain = PlatformError::Domain::service,
                      .code = 1,
                      .description = "on this system Quorvane installs its add-on itself"}};
}

}  // namespace

BundleFiles makeLiveBundleFiles() {
    using std::filesystem::path;
    return {.properties = [](const path&) { return PropertyDictionary{}; },
            .stage = [](const path&, const path&) -> Result<path> { return unavailable(); },
            .putInPlace = [](const path&, const path&) -> Result<void> { return unavailable(); },
            .discardStaged = [](const path&) {}};
}

}  // namespace quorvane
