// State of the folder where the add-on is installed.
#pragma once

#include <optional>
#include <string>

#include "platform/BundleFiles.hpp"

namespace quorvane {

struct AddOnInstallation {
    enum class State {
        empty,
        installed,
        damaged,  // the remains of a bundle
        foreign,  // not the add-on's; left alone. `problem` describes it
    };

    std::filesystem::path supportDirectory{};
    std::filesystem::path bundle{};
    State state = State::empty;
    std::string version{};  // of an installed bundle; "-" when it has none
    std::string problem{};

    static AddOnInstallation inspect(const std::filesystem::path& applicationSupport,
                                     const BundleFiles& files);
};

// The version of a bundle that is the add-on; nullopt when it is not the add-on.
std::optional<std::string> addOnVersionOf(const std::filesystem::path& bundle,
                                          const BundleFiles& files);

// The add-on's bundle that belongs to this program: in the parent of the program's folder, as when
// built, or in "lib/quorvane" there, as when packaged.
std::optional<std::filesystem::path> bundleToInstall(const std::filesystem::path& program,
                                                     const BundleFiles& files);

}  // namespace quorvane
