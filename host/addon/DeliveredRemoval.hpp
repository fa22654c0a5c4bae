// Follow-up of a removal that was delivered to the add-on in the answer to its hello. The add-on
// then only closes its windows; a launch with --uninstall deletes its files.
#pragma once

#include "host/addon/AddOnCommands.hpp"
#include "platform/Clock.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only.
class DeliveredRemoval {
public:
    // Longer than `quorvane-host remove` takes, which carries out its own removal.
    static constexpr Duration kPatience = std::chrono::seconds{20};

    DeliveredRemoval(AddOnCommands::Services services, Logger log);

    // If the removal is still pending after kPatience, quits the add-on and removes it.
    void delivered();

private:
    void begin();

    std::optional<UserDefaults> sharedSuite_;
    Clock clock_;
    Logger log_;
    AddOnCommands commands_;
    Timer timer_;  // held until the removal has ended
};

}  // namespace quorvane
