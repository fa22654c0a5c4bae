#include "AddOnKit/StateRefresher.hpp"

#include <chrono>
#include <utility>

namespace quorvane {
namespace {

constexpr Duration kPollPeriod = std::chrono::seconds{2};
// The card's times change once a second: a poll that has just missed one of their changes waits for
// the next, and then stays with them.
constexpr Duration kPollTolerance = std::chrono::seconds{1};
constexpr Duration kFollowUpDelay = std::chrono::milliseconds{800};

}  // namespace

StateRefresher::StateRefresher(Clock clock, std::function<void()> refresh)
    : clock_(std::move(clock)), refresh_(std::move(refresh)) {}

void StateRefresher::setActive(bool active) {
    if (!active || isStopped_) {
        isPolling_ = false;
        poll_.reset();
    } else if (!isPolling_) {
        isPolling_ = true;
        refreshAndPollOn();
    }
}

void StateRefresher::nudge() {
    if (isStopped_) return;
    followUp_ = clock_.after(kFollowUpDelay, [this] {
        followUp_.reset();
        refresh();
    });
}

void StateRefresher::stop() {
    isStopped_ = true;
    isPolling_ = false;
    poll_.reset();
    followUp_.reset();
}

// The pause begins when the refresh is over: a main application that answers slowly is not asked
// without any pause.
void StateRefresher::refreshAndPollOn() {
    const auto life = life_.watch();
    refresh();
    if (life.isOver() || !isPolling_) return;  // the refresh may have ended the polling
    poll_ = clock_.afterAbout(kPollPeriod, kPollTolerance, [this] {
        poll_.reset();
        refreshAndPollOn();
    });
}

void StateRefresher::refresh() {
    const auto action = refresh_;  // a copy, since it may destroy the refresher
    action();
}

}  // namespace quorvane
