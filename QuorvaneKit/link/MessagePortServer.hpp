// The main application's end of the link. Serves the main port and the four query ports, each on
// its own thread, and routes requests with the right secret to the handlers.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "QuorvaneKit/link/MessagePortHandlers.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/RequestRouter.hpp"
#include "platform/Log.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

// Created, started, stopped and destroyed on one thread, which is not a port's thread. When another
// process holds a name, its port retries until the name is free.
class MessagePortServer {
public:
    struct Services {
        LogSink log;
        OpenPort openPort;
        // The reason why no port can be opened, whatever its name; nullopt when a name is merely
        // taken, or free. Any thread.
        std::function<std::optional<std::string>()> portsProblem = [] { return std::nullopt; };
        // Sets the calling thread's name for debuggers; may be null.
        std::function<void(const std::string& name)> nameCurrentThread;
        // Makes the object for all waits of the server, once for each start. `stop` cancels it.
        // Cancelling it earlier, on any thread, ends a `start` that waits.
        std::function<std::shared_ptr<CancellableWait>()> makeWait = [] {
            return std::make_shared<CancellableWait>();
        };
    };

    explicit MessagePortServer(Services services,
                               std::string_view portBaseName = kMessagePortBaseName);
    // Stops.
    ~MessagePortServer();

    // Set both before a port opens; do not change them until `stop` has returned. The secret may
    // still be set by `openPort`, inside the call that opens the first port. Without a secret every
    // request is dropped.
    MessagePortHandlers handlers;
    std::optional<Bytes> expectedSecret;

    // Returns when every port is open. Waits at most two seconds for each port that is not; such a
    // port keeps retrying.
    void start();
    // Returns when all threads have ended and the names are free again. Does not wait for pending
    // handlers.
    void stop();

private:
    struct PortThread;

    void addPort(PortKind kind, std::string portName, std::string threadName);
    void startThread(PortThread& entry);
    void runPort(PortThread& entry);
    std::unique_ptr<LocalPort> openWhenFree(PortThread& entry);
    void logFailure(const std::string& portName, std::int64_t attempt) const;
    bool setPort(PortThread& entry, LocalPort* port);
    void setReady(PortThread& entry);

    const Services services_;
    const std::string portBaseName_;
    const Logger log_;
    std::shared_ptr<CancellableWait> wait_;
    std::mutex handleLock_;
    // Changed only while no thread runs.
    std::vector<std::unique_ptr<PortThread>> portThreads_;
};

}  // namespace quorvane
