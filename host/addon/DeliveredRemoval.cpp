#include "host/addon/DeliveredRemoval.hpp"

#include "QuorvaneKit/link/SharedDefaults.hpp"

namespace quorvane {

DeliveredRemoval::DeliveredRemoval(AddOnCommands::Services services, Logger log)
    : sharedSuite_(services.sharedSuite),
      clock_(services.control.clock),
      log_(std::move(log)),
      commands_(std::move(services)) {}

void DeliveredRemoval::delivered() {
    if (!timer_) timer_ = clock_.after(kPatience, [this] { begin(); });
}

void DeliveredRemoval::begin() {
    if (!SharedDefaults{sharedSuite_}.lockScreenPendingRemoval()) return timer_.reset();
    log_.standard("removal: the add-on is still there; removing it");
    commands_.remove([this](const AddOnCommands::Outcome& outcome) {
        if (outcome)
            log_.standard("removal: finished");
        else
            log_.error("removal: failed: %{public}s", outcome.error());
        timer_.reset();
    });
}

}  // namespace quorvane
