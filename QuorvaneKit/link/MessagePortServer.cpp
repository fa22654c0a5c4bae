#include "QuorvaneKit/link/MessagePortServer.hpp"

#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "platform/Wipe.hpp"

namespace quorvane {
namespace {

constexpr Duration kReadyTimeout = std::chrono::seconds{2};
constexpr Duration kShortRetry = std::chrono::milliseconds{500};
constexpr Duration kLongRetry = std::chrono::seconds{2};
constexpr std::int64_t kAttemptsBeforeLongRetry = 9;
constexpr std::int64_t kAttemptsPerLogLine = 15;

bool isReported(std::int64_t attempt) { return attempt == 1 || attempt % kAttemptsPerLogLine == 0; }

Duration retryDelay(std::int64_t attempts) {
    return attempts < kAttemptsBeforeLongRetry ? kShortRetry : kLongRetry;
}

}  // namespace

struct MessagePortServer::State {
    // One endpoint with its thread. Its address is stable while the thread runs.
    struct PortThread {
        PortThread(Endpoint itsEndpoint, std::string itsPortName, std::string itsThreadName,
                   const MessagePortServer& server, const State& state)
            : portName(std::move(itsPortName)),
              threadName(std::move(itsThreadName)),
              ready(state.services.makeWaitFlag()),
              router(itsEndpoint, server.handlers, server.expectedSecret, state.log,
                     state.services.makeWaitFlag) {}

        const std::string portName;
        const std::string threadName;
        const std::unique_ptr<WaitFlag> ready;
        RequestRouter router;
        LocalPort* port = nullptr;  // under handleLock, while the port's loop may run
        std::thread thread;
    };

    State(Services itsServices, std::string_view baseName)
        : services(std::move(itsServices)),
          portBaseName(baseName),
          log(services.log, kKitLogSubsystem, "MessagePortServer") {}

    void makePortThreads(const MessagePortServer& server);
    void startThread(PortThread& entry);
    void runPort(PortThread& entry);
    std::unique_ptr<LocalPort> openWhenFree(PortThread& entry);
    void logFailure(const std::string& portName, std::int64_t attempt) const;
    bool setPort(PortThread& entry, LocalPort* port);
    bool isStopRequested() const;

    const Services services;
    const std::string portBaseName;
    const Logger log;

    mutable std::mutex handleLock;
    bool stopRequested = false;          // under handleLock
    std::deque<PortThread> portThreads;  // changed only while no thread runs
    std::unique_ptr<WaitFlag> stopping;  // ends the pauses between attempts
};

MessagePortServer::MessagePortServer(Services services, std::string_view portBaseName)
    : state_(std::make_unique<State>(std::move(services), portBaseName)) {}

MessagePortServer::~MessagePortServer() {
    stop();
    if (expectedSecret) wipe(*expectedSecret);
}

void MessagePortServer::start() {
    State& state = *state_;
    if (!state.portThreads.empty()) return;
    {
        const std::lock_guard guard{state.handleLock};
        state.stopRequested = false;
    }
    state.stopping = state.services.makeWaitFlag();
    state.makePortThreads(*this);
    for (State::PortThread& entry : state.portThreads) state.startThread(entry);
    for (State::PortThread& entry : state.portThreads)
        if (!entry.ready->waitFor(kReadyTimeout))
            state.log.standard("Message port thread %{public}s did not become ready within 2s",
                               entry.threadName);
}

void MessagePortServer::stop() {
    State& state = *state_;
    if (state.portThreads.empty()) return;
    {
        const std::lock_guard guard{state.handleLock};
        state.stopRequested = true;
        for (State::PortThread& entry : state.portThreads)
            if (entry.port != nullptr) entry.port->stop();
    }
    state.stopping->raise();
    for (State::PortThread& entry : state.portThreads) entry.router.cancel();
    state.log.info("Message port server stopped");
    for (State::PortThread& entry : state.portThreads)
        if (entry.thread.joinable()) entry.thread.join();
    state.portThreads.clear();
}

void MessagePortServer::State::makePortThreads(const MessagePortServer& server) {
    for (std::size_t index = 0; index < kQueryPortCount; ++index)
        portThreads.emplace_back(QueryEndpoint{index}, queryPortName(portBaseName, index),
                                 queryPortThreadName(index), server, *this);
    portThreads.emplace_back(MainEndpoint{}, portBaseName, std::string{kMainPortThreadName}, server,
                             *this);
}

// If the system refuses a thread, its port never becomes ready.
void MessagePortServer::State::startThread(PortThread& entry) try {
    entry.thread = std::thread{[this, &entry] {
        if (services.nameCurrentThread) services.nameCurrentThread(entry.threadName);
        runPort(entry);
    }};
} catch (const std::system_error&) {
}

void MessagePortServer::State::runPort(PortThread& entry) {
    const auto port = openWhenFree(entry);
    if (port == nullptr) {
        entry.ready->raise();
        return;
    }
    if (!setPort(entry, port.get())) {
        log.info("Message port %{public}s stopped before it finished starting", entry.portName);
        entry.ready->raise();
        return;
    }
    log.info("Message port %{public}s started on dedicated thread", entry.portName);
    entry.ready->raise();
    port->run();
    setPort(entry, nullptr);
    log.info("Message port %{public}s thread exited", entry.portName);
}

std::unique_ptr<LocalPort> MessagePortServer::State::openWhenFree(PortThread& entry) {
    const auto handler = [&router = entry.router](std::int32_t messageID, ByteView body) {
        return router.answer(messageID, body);
    };
    bool isEnding = false;
    for (std::int64_t attempt = 1;; ++attempt) {
        // The flag may be raised just before the stop itself; do not retry without a pause then.
        if (isEnding || isStopRequested()) {
            log.info("Message port %{public}s stopped before it could open", entry.portName);
            return nullptr;
        }
        if (auto port = services.openPort(entry.portName, handler)) return port;
        if (isReported(attempt)) logFailure(entry.portName, attempt);
        isEnding = stopping->waitFor(retryDelay(attempt));
    }
}

// A taken name is not an error: this host waits for its turn.
void MessagePortServer::State::logFailure(const std::string& portName, std::int64_t attempt) const {
    if (const auto problem = services.portsProblem())
        log.error("Message port %{public}s cannot be opened (attempt %ld): %{public}s; retrying",
                  portName, attempt, *problem);
    else
        log.standard(
            "Message port %{public}s busy (attempt %ld); another instance holds it — retrying "
            "until it frees",
            portName, attempt);
}

// False when the server is being stopped.
bool MessagePortServer::State::setPort(PortThread& entry, LocalPort* port) {
    const std::lock_guard guard{handleLock};
    if (port != nullptr && stopRequested) return false;
    entry.port = port;
    return true;
}

bool MessagePortServer::State::isStopRequested() const {
    const std::lock_guard guard{handleLock};
    return stopRequested;
}

}  // namespace quorvane
