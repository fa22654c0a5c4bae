// Sender of the add-on's periodic hello to the main application. Keeps the configuration that the
// main application answers with.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "AddOnKit/life/AddOnIdentity.hpp"
#include "QuorvaneKit/link/LockScreenHelloClient.hpp"
#include "platform/Clock.hpp"
#include "platform/LifeToken.hpp"
#include "platform/Log.hpp"
#include "platform/Observable.hpp"

namespace quorvane {

// Main thread only. Owned by the coordinator. Listeners and actions may re-enter the link.
class AddOnLink {
public:
    // Sends one hello. The completion runs once, on the main thread, inside the call or later.
    using HelloCompletion = std::function<void(LockScreenHelloResult)>;
    using SendHello = std::function<void(LockScreenAddOnHello, HelloCompletion completion)>;

    AddOnLink(AddOnIdentity identity, SendHello sendHello, Clock clock,
              std::function<void()> onRemovalRequested, LogSink log);

    // Sends a hello now, and again a minute after each answer.
    void start();
    // Sends a hello now. If one is in flight, a single follow-up is sent after it, however many
    // calls there were.
    void sayHello();
    // Permanent: sends no more hellos and ignores a late answer.
    void stop();

    // Whether the card may be shown; changes only together with one of the two observables.
    bool allowsPlayer() const;
    const AddOnIdentity& identity() const { return identity_; }

    // The last answer. A failed hello does not reset it, because a restarted or busy main
    // application has not turned the card off.
    Observable<LockScreenAddOnConfiguration>& configuration() { return configuration_; }
    Observable<bool>& isStopped() { return isStopped_; }

private:
    void sayHelloOfLoop();
    void helloEnded(const LockScreenHelloResult& result);
    void apply(const LockScreenAddOnConfiguration& answer);
    LockScreenAddOnHello hello() const;

    AddOnIdentity identity_;
    Observable<LockScreenAddOnConfiguration> configuration_;
    Observable<bool> isStopped_{false};
    SendHello sendHello_;
    Clock clock_;
    std::function<void()> onRemovalRequested_;
    const Instant supersedesUntil_;
    Timer loop_;                     // the pause until the loop's next hello
    bool loopAwaitsAnswer_ = false;  // the pause begins with the next answer
    bool isInFlight_ = false;
    bool followUpRequested_ = false;
    Logger log_;
    LifeToken life_;
};

}  // namespace quorvane
