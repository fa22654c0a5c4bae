#include "AddOnKit/player/StateRefresher.hpp"

#include <chrono>
#include <utility>

namespace quorvane {
namespace {

constexpr Duration kPollPeriod = std::chrono::seconds{2};
// The card's times change once a second, so every window of this length contains a wake-up to
// share. Windows start one period apart wherever the polls fall in them, so polls average one per
// period.
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
        // Makes the first window end, rather than begin, one period from now.
        pollDue_ = clock_.now() - kPollTolerance;
        refreshWhatIsDue();
    }
}

void StateRefresher::nudge() {
    if (isStopped_) return;
    followUpDue_ = clock_.now() + kFollowUpDelay;
    followUp_ = clock_.after(kFollowUpDelay, [this] { refreshWhatIsDue(); });
}

void StateRefresher::stop() {
    isStopped_ = true;
    isPolling_ = false;
    poll_.reset();
    followUp_.reset();
}

// One refresh answers a poll and a follow-up that are due together.
void StateRefresher::refreshWhatIsDue() {
    const Instant now = clock_.now();
    const bool isPoll = isPolling_ && now >= pollDue_;
    if (isPoll) {
        poll_.reset();
        pollDue_ += kPollPeriod;
    }
    if (now >= followUpDue_) followUp_.reset();
    refresh_();
    // The refresh may have ended the polling, or ended and restarted it.
    if (!isPoll || !isPolling_ || poll_) return;
    const Instant end = clock_.now();
    // Leave a pause, so that a slow main application is not asked back to back.
    if (pollDue_ <= end) pollDue_ = end + kPollPeriod - kPollTolerance;
    poll_ = clock_.afterAbout(pollDue_ - end, kPollTolerance, [this] { refreshWhatIsDue(); });
}

}  // namespace quorvane
