#include "host/addon/AddOnControl.hpp"

#include <utility>

#include "QuorvaneKit/link/Identifiers.hpp"

namespace quorvane {
namespace {

constexpr Duration kInterval = std::chrono::milliseconds{50};
constexpr Duration kQuitPatience = std::chrono::seconds{3};
// A new copy waits twelve seconds for an older one.
constexpr Duration kStartPatience = std::chrono::seconds{20};
// Enough for a copy that ends at once.
constexpr Duration kStartPatienceWithoutBus = std::chrono::seconds{2};
constexpr Duration kRemovalPatience = std::chrono::seconds{10};
constexpr int kChecksBetweenRequests = 5;

}  // namespace

void AddOnControl::poll(Duration patience, std::function<bool()> condition,
                        std::function<void(bool)> done) {
    deadline_ = services_.clock.now() + patience;
    condition_ = std::move(condition);
    done_ = std::move(done);
    nextCheck_ = services_.clock.after(Duration{}, [this] { check(); });
}

void AddOnControl::check() {
    const bool holds = condition_();
    if (!holds && services_.clock.now() < deadline_) {
        nextCheck_ = services_.clock.after(kInterval, [this] { check(); });
        return;
    }
    const auto done = std::exchange(done_, nullptr);
    done(holds);  // may poll again
}

bool AddOnControl::isRunning() const {
    return !services_.applications.running(std::string{kAddOnBundleIdentifier}).empty();
}

void AddOnControl::quit(std::function<void(bool)> done) {
    services_.notices.post(AddOnSignals::kQuit, {});
    const auto isGone = [this] { return !isRunning(); };
    const Duration patience = services_.receivesNotices ? kQuitPatience : Duration{};
    poll(patience, isGone, [this, isGone, done = std::move(done)](bool obeyed) {
        if (obeyed) return done(true);
        requestQuitBySignal();
        poll(kQuitPatience, isGone, done);
    });
}

// A copy that was asked to remove itself no longer listens to the notice.
void AddOnControl::requestQuitBySignal() {
    for (const RunningCopy& copy :
         services_.applications.running(std::string{kAddOnBundleIdentifier}))
        services_.applications.terminate(copy.pid);
}

void AddOnControl::awaitVersion(const std::string& version, std::function<void(Answer)> done) {
    hasAnswered_ = false;
    checks_ = 0;
    observation_ = services_.notices.observe(
        AddOnSignals::kStatus, [this, version](const PropertyDictionary& userInfo) {
            const auto status = AddOnSignals::Status::fromUserInfo(userInfo);
            if (status && status->version == version) hasAnswered_ = true;
        });
    poll(
        services_.receivesNotices ? kStartPatience : kStartPatienceWithoutBus,
        [this] {
            requestStatus();
            return hasAnswered_ || !isRunning();
        },
        [this, done = std::move(done)](bool) {
            observation_.reset();
            done(hasAnswered_ ? Answer::runs : isRunning() ? Answer::isSilent : Answer::ended);
        });
}

// Requests again, because an add-on does not receive requests before it has started.
void AddOnControl::requestStatus() {
    if (checks_++ % kChecksBetweenRequests == 0)
        services_.notices.post(AddOnSignals::kStatusRequest, {});
}

void AddOnControl::awaitRemoval(std::function<bool()> isRemoved, std::function<void(bool)> done) {
    poll(
        kRemovalPatience, [this, isRemoved] { return isRemoved() && !isRunning(); },
        std::move(done));
}

}  // namespace quorvane
