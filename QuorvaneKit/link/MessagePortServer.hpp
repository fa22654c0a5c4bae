// The main application's end of the link: it serves the main port and the four query ports, each
// on a thread of its own, and routes what comes with the right secret to its handlers.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "QuorvaneKit/link/MessagePortHandlers.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/RequestRouter.hpp"
#include "QuorvaneKit/link/WaitFlag.hpp"
#include "platform/Log.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

// Made, started, stopped and destroyed on one thread that is none of its ports'. When a name is
// taken by another process, its port waits and tries again until the name is free.
class MessagePortServer {
public:
    using Endpoint = PortEndpoint;

    struct Services {
        LogSink log;
        OpenPort openPort;
        // Why no port can be opened, whatever its name; nullopt when a name is taken, or free. Any
        // thread.
        std::function<std::optional<std::string>()> portsProblem = [] { return std::nullopt; };
        // Names the calling thread as debuggers show it; may be unset.
        std::function<void(const std::string& name)> nameCurrentThread;
        MakeWaitFlag makeWaitFlag = &quorvane::makeWaitFlag;
    };

    explicit MessagePortServer(Services services,
                               std::string_view portBaseName = kMessagePortBaseName);
    // Stops.
    ~MessagePortServer();

    // Both are set before a port opens and do not change until `stop` has returned. The secret may
    // still be set by `openPort`, inside the call that opens the first port. Without a secret every
    // request is dropped.
    MessagePortHandlers handlers;
    std::optional<Bytes> expectedSecret;

    // Returns when every port is open, or after at most two seconds for each that is not; such a
    // port goes on trying.
    void start();
    // Returns when all threads have ended and the names are free again; a handler that is still
    // awaited is not waited for.
    void stop();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace quorvane
