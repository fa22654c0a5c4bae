// Identity of this copy of the add-on, computed once at start.
#pragma once

#include <functional>
#include <string>

#include "AddOnKit/life/SupersedeOnce.hpp"
#include "platform/Log.hpp"
#include "platform/ProcessInfo.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

struct AddOnIdentity {
    std::string installID;  // kept until the preferences are cleared
    std::string addOnVersion;
    std::string macOSVersion;  // major.minor.patch
    bool supportsThisMacOS = false;
    SupersedeOnce supersedeOnce;
    bool operator==(const AddOnIdentity&) const = default;

    // Creates and stores an install identifier when the defaults hold none.
    static AddOnIdentity make(const ProcessInfo& process, const UserDefaults& defaults,
                              const std::function<std::string()>& makeUUID, const Logger& log);
};

}  // namespace quorvane
