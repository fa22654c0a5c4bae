// The main application's side of the link, as a whole: it owns the player, the ports' server and
// what is said to the add-on.
#pragma once

#include <memory>
#include <optional>

#include "QuorvaneKit/link/DarwinNotificationCenter.hpp"
#include "QuorvaneKit/link/MessagePortServer.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "host/link/LockScreenDesk.hpp"
#include "host/link/MainPortFirst.hpp"
#include "host/players/PlayerSource.hpp"
#include "host/players/PublishedState.hpp"
#include "host/waits/EndableWaits.hpp"
#include "platform/FileStore.hpp"
#include "platform/MainThread.hpp"
#include "platform/SerialQueue.hpp"

namespace quorvane {

// Main thread only. What the ports' threads need is shared with them; everything else they post
// here.
class HostCoordinator {
public:
    struct Services {
        LogSink log;
        OpenPort openPort;
        std::function<std::optional<std::string>()> portsProblem = [] { return std::nullopt; };
        std::function<void(const std::string& name)> nameCurrentThread;  // may be unset
        FileStore files;
        FillRandom fillRandom;
        MainThread mainThread;
        MakeSerialQueue makeSerialQueue;
        Clock clock;
        WallClock wallClock;
        DarwinNotices darwinNotices;
        std::optional<UserDefaults> sharedSuite;
    };

    HostCoordinator(Services services, std::unique_ptr<PlayerSource> player);
    ~HostCoordinator();

    // Serves from now on, or from when the host that holds the ports' names has ended. False when
    // the system refuses the thread for that.
    bool start();
    // Tells the add-on, if it was served. The names are free afterwards.
    void stop();

    // Whether all ports are open.
    bool isServing() const;
    // While serving: false when there is no connection secret, which has been logged. Every request
    // is then dropped.
    bool hasSecret() const;
    // Called when all ports have opened.
    std::function<void()> onServing;
    // Called when the add-on was told to remove itself.
    std::function<void()> onRemovalDelivered;

private:
    struct Link;

    void findSecret();
    OpenPort countingOpenPort();
    MessagePortHandlers makeHandlers() const;
    void portOpened();
    void playerChanged();
    void commandEnded(bool isCarriedOut);
    void announceSoon();
    void announce();

    Services services_;
    Logger log_;
    std::unique_ptr<PlayerSource> player_;
    SharedDefaults defaults_;
    LockScreenDesk desk_;
    DarwinNotificationCenter notices_;
    std::shared_ptr<Link> link_;  // shared with the ports' threads
    EndableWaits waits_;
    std::optional<MainPortFirst> ports_;  // outlives the server, whose threads call it
    std::optional<MessagePortServer> server_;
    // Starts the server, which may take as long as another host lives. Destroyed before it.
    std::unique_ptr<SerialQueue> starting_;
    std::size_t openPorts_ = 0;
    std::optional<PlayerSnapshot> announced_;  // nullopt: the next announcement is due regardless
    Timer announcement_;
};

}  // namespace quorvane
