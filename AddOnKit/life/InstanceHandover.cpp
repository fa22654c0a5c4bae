#include "AddOnKit/life/InstanceHandover.hpp"

#include <algorithm>
#include <tuple>

namespace quorvane {

InstanceHandover::InstanceHandover(RunningCopy me, Operations operations, Timing timing)
    : me_(me), operations_(std::move(operations)), timing_(timing) {}

void InstanceHandover::resolve(std::function<void(Outcome)> completion) {
    completion_ = std::move(completion);
    begin();
}

void InstanceHandover::waitOnly(std::function<void(Outcome)> completion) {
    asks_ = false;
    completion_ = std::move(completion);
    begin();
}

// An unknown launch date counts as the distant past. For equal dates, the lower pid is older.
bool InstanceHandover::isOlder(const RunningCopy& copy) const {
    const auto age = [](const RunningCopy& each) {
        return std::tuple{each.launchDate.value_or(WallTime::min()), each.pid};
    };
    return copy.pid != me_.pid && age(copy) < age(me_);
}

InstanceHandover::PIDs InstanceHandover::olderCopies() const {
    PIDs pids;
    for (const RunningCopy& copy : operations_.running())
        if (isOlder(copy)) pids.push_back(copy.pid);
    return pids;
}

void InstanceHandover::begin() {
    auto others = operations_.running();
    std::erase_if(others, [this](const RunningCopy& copy) { return copy.pid == me_.pid; });
    if (others.empty()) return finish({Kind::alone});
    if (std::ranges::none_of(others, [this](const RunningCopy& copy) { return isOlder(copy); })) {
        Outcome outcome{Kind::oldestCopy};
        for (const RunningCopy& copy : others) outcome.copies.push_back(copy.pid);
        return finish(outcome);
    }
    const PIDs older = olderCopies();
    if (older.empty()) return finish({Kind::alone});
    if (timing_.wait > Duration{}) return poll(timing_.wait);
    ask(older);
}

// Counts polls, not elapsed time: each poll looks for copies before it checks the limit.
void InstanceHandover::poll(Duration limit) {
    timer_ = operations_.clock.after(timing_.poll, [this, limit] {
        elapsed_ += timing_.poll;
        const PIDs left = olderCopies();
        const bool hasAsked = !asked_.empty();
        if (left.empty())
            return finish(hasAsked ? Outcome{Kind::terminated, asked_}
                                   : Outcome{.kind = Kind::othersExited, .waited = elapsed_});
        if (elapsed_ < limit) return poll(limit);
        if (hasAsked) return finish({Kind::stillRunningAfterTermination, left});
        ask(left);
    });
}

// `older` comes from the last look and is never empty. Another look might find that they have quit.
void InstanceHandover::ask(const PIDs& older) {
    if (!asks_) return finish({Kind::timedOut, older});
    asked_ = older;
    operations_.terminate(asked_);
    const PIDs left = olderCopies();
    if (left.empty()) return finish({Kind::terminated, asked_});
    elapsed_ = Duration{};
    if (timing_.grace > Duration{}) return poll(timing_.grace);
    finish({Kind::stillRunningAfterTermination, left});
}

// The completion may destroy the handover.
void InstanceHandover::finish(Outcome outcome) {
    const auto completion = std::exchange(completion_, nullptr);
    completion(std::move(outcome));
}

}  // namespace quorvane
