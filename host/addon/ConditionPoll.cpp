#include "host/addon/ConditionPoll.hpp"

#include <utility>

namespace quorvane {

void ConditionPoll::start(Duration patience, std::function<bool()> condition,
                          std::function<void(bool)> done) {
    deadline_ = clock_.now() + patience;
    condition_ = std::move(condition);
    done_ = std::move(done);
    lookLater(Duration{});
}

void ConditionPoll::lookLater(Duration delay) {
    timer_ = clock_.after(delay, [this] { look(); });
}

void ConditionPoll::look() {
    const bool holds = condition_();
    if (!holds && clock_.now() < deadline_) return lookLater(kInterval);
    const auto done = std::exchange(done_, nullptr);
    done(holds);
}

}  // namespace quorvane
