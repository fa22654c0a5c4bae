// The main application's side of the link: owns the player, the ports' server and the notices to
// the add-on.
#pragma once

#include <memory>
#include <optional>

#include "QuorvaneKit/link/CancellableWait.hpp"
#include "QuorvaneKit/link/MessagePortServer.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "QuorvaneKit/records/LockScreenRecords.hpp"
#include "host/players/PlayerSource.hpp"
#include "platform/DarwinNotices.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/FileStore.hpp"
#include "platform/MainThread.hpp"
#include "platform/MessagePort.hpp"
#include "platform/SerialQueue.hpp"

namespace quorvane {

// Main thread only. The ports' threads share only the state they need; they post everything else to
// the main thread.
class HostCoordinator {
public:
    struct Services {
        LogSink log;
        OpenPort openPort;
        std::function<std::optional<std::string>()> portsProblem = [] { return std::nullopt; };
        std::function<void(const std::string& name)> nameCurrentThread;  // may be null
        FileStore files;
        FillRandom fillRandom;
        MainThread mainThread;
        MakeSerialQueue makeSerialQueue;
        Clock clock;
        WallClock wallClock;
        DarwinNotices darwinNotices;
        DistributedNotices distributedNotices;
        std::optional<UserDefaults> sharedSuite;
    };

    HostCoordinator(Services services, std::unique_ptr<PlayerSource> player);
    ~HostCoordinator();

    // Serves from now on, or once the host that holds the ports' names has ended. Returns false
    // when the system refuses the thread.
    bool start();
    // Notifies the add-on, if it was served. Frees the ports' names.
    void stop();

    // Whether all ports are open.
    bool isServing() const;
    // While serving: false when there is no connection secret, which has been logged. Every request
    // is then dropped.
    bool hasSecret() const;
    // Called when all ports have opened.
    std::function<void()> onServing;
    // Called while making an answer that asks the add-on to remove itself.
    std::function<void()> onRemovalDelivered;

private:
    struct Link;

    void findSecret();
    OpenPort openMainPortFirst();
    MessagePortHandlers makeHandlers() const;
    void portOpened();
    void playerChanged();
    void commandEnded(bool isCarriedOut);
    void announceSoon();
    void announce();
    // Returns the encoded configuration, made from the shared defaults, and records the hello
    // there. An undecodable hello gets a configuration that keeps the card off.
    Bytes answerHello(ByteView request);
    LockScreenAddOnConfiguration configurationFor(const LockScreenAddOnHello& hello);
    void report(const char* what, const Result<void>& written) const;

    Services services_;
    Logger log_;
    std::unique_ptr<PlayerSource> player_;
    SharedDefaults defaults_;
    std::shared_ptr<Link> link_;             // shared with the ports' threads
    std::shared_ptr<CancellableWait> wait_;  // all waits of the server since `start`
    std::optional<MessagePortServer> server_;
    // Starts the server, which may block until another host ends. Destroyed before the server.
    std::unique_ptr<SerialQueue> starting_;
    std::size_t openPorts_ = 0;
    std::optional<PlayerSnapshot> announced_;  // nullopt: always announce the next snapshot
    Timer announcement_;
    Handle playersRequests_;
};

}  // namespace quorvane
