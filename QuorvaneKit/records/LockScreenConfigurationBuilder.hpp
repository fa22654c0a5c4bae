// Builder of the main application's answer to a hello, from the user's settings.
#pragma once

#include <string_view>

#include "QuorvaneKit/records/LockScreenRecords.hpp"

namespace quorvane {

// The oldest add-on that the main application accepts.
inline constexpr std::string_view kMinimumAddOnVersion = "1.0.0";

struct LockScreenConfigurationBuilder {
    bool isEnabled = false;
    bool removalRequested = false;

    // A removal turns the card off, whatever the user's setting.
    LockScreenAddOnConfiguration build() const {
        return {isEnabled && !removalRequested, removalRequested,
                std::string{kMinimumAddOnVersion}};
    }
};

}  // namespace quorvane
