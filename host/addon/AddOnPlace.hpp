// What stands where the add-on is installed.
#pragma once

#include <optional>
#include <string>

#include "platform/BundleFiles.hpp"
#include "platform/FileManagerClient.hpp"

namespace quorvane {

struct AddOnPlace {
    enum class State {
        empty,
        installed,
        damaged,  // what is left of a bundle
        foreign,  // not ours to touch; `trouble` says what it is
    };

    std::filesystem::path supportDirectory;
    std::filesystem::path bundle;
    State state = State::empty;
    std::string version;  // of an installed one; "-" when it does not say
    std::string trouble;

    static AddOnPlace look(const std::filesystem::path& applicationSupport,
                           const BundleFiles& files);
};

// The version of a bundle that is the add-on; nothing when it is not.
std::optional<std::string> addOnVersionOf(const std::filesystem::path& bundle,
                                          const BundleFiles& files);

}  // namespace quorvane
