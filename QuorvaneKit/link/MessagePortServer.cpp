#include "QuorvaneKit/link/MessagePortServer.hpp"

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

// One endpoint with its thread.
struct MessagePortServer::PortThread {
    const std::string portName;
    const std::string threadName;
    RequestRouter router;
    bool isReady = false;       // changed by the server's wait
    LocalPort* port = nullptr;  // under handleLock_, while the port's loop may run
    std::thread thread{};
};

MessagePortServer::MessagePortServer(Services services, std::string_view portBaseName)
    : services_(std::move(services)),
      portBaseName_(portBaseName),
      log_(services_.log, kKitLogSubsystem, "MessagePortServer") {}

MessagePortServer::~MessagePortServer() {
    stop();
    if (expectedSecret) wipe(*expectedSecret);
}

void MessagePortServer::start() {
    if (!portThreads_.empty()) return;
    wait_ = services_.makeWait();
    for (std::size_t index = 0; index < kQueryPortCount; ++index)
        addPort(PortKind::query, queryPortName(portBaseName_, index), queryPortThreadName(index));
    addPort(PortKind::main, portBaseName_, std::string{kMainPortThreadName});
    for (const auto& entry : portThreads_) startThread(*entry);
    for (const auto& entry : portThreads_) {
        const bool isReady = wait_->waitFor(kReadyTimeout, [&] { return entry->isReady; });
        if (!isReady && !wait_->isCancelled())
            log_.standard("Message port thread %{public}s did not become ready within 2s",
                          entry->threadName);
    }
}

void MessagePortServer::stop() {
    if (portThreads_.empty()) return;
    wait_->cancel();
    {
        const std::lock_guard guard{handleLock_};
        for (const auto& entry : portThreads_)
            if (entry->port != nullptr) entry->port->stop();
    }
    log_.info("Message port server stopped");
    for (const auto& entry : portThreads_)
        if (entry->thread.joinable()) entry->thread.join();
    portThreads_.clear();
}

void MessagePortServer::addPort(PortKind kind, std::string portName, std::string threadName) {
    portThreads_.push_back(std::unique_ptr<PortThread>{
        new PortThread{std::move(portName), std::move(threadName),
                       RequestRouter{kind, handlers, expectedSecret, log_, wait_}}});
}

// If the system refuses a thread, its port never becomes ready.
void MessagePortServer::startThread(PortThread& entry) try {
    entry.thread = std::thread{[this, &entry] {
        if (services_.nameCurrentThread) services_.nameCurrentThread(entry.threadName);
        runPort(entry);
    }};
} catch (const std::system_error&) {
}

void MessagePortServer::runPort(PortThread& entry) {
    const auto port = openWhenFree(entry);
    if (port == nullptr) return setReady(entry);
    if (!setPort(entry, port.get())) {
        log_.info("Message port %{public}s stopped before it finished starting", entry.portName);
        return setReady(entry);
    }
    log_.info("Message port %{public}s started on dedicated thread", entry.portName);
    setReady(entry);
    port->run();
    setPort(entry, nullptr);
    log_.info("Message port %{public}s thread exited", entry.portName);
}

std::unique_ptr<LocalPort> MessagePortServer::openWhenFree(PortThread& entry) {
    const auto handler = [&router = entry.router](std::int32_t messageID, ByteView body) {
        return router.answer(messageID, body);
    };
    for (std::int64_t attempt = 1; !wait_->isCancelled(); ++attempt) {
        if (auto port = services_.openPort(entry.portName, handler)) return port;
        if (isReported(attempt) && !wait_->isCancelled()) logFailure(entry.portName, attempt);
        wait_->waitFor(retryDelay(attempt), [] { return false; });
    }
    log_.info("Message port %{public}s stopped before it could open", entry.portName);
    return nullptr;
}

// A taken name is not an error: this host waits for its turn.
void MessagePortServer::logFailure(const std::string& portName, std::int64_t attempt) const {
    if (const auto problem = services_.portsProblem())
        log_.error("Message port %{public}s cannot be opened (attempt %ld): %{public}s; retrying",
                   portName, attempt, *problem);
    else
        log_.standard(
            "Message port %{public}s busy (attempt %ld); another instance holds it — retrying "
            "until it frees",
            portName, attempt);
}

// Returns false when the server is being stopped.
bool MessagePortServer::setPort(PortThread& entry, LocalPort* port) {
    const std::lock_guard guard{handleLock_};
    if (port != nullptr && wait_->isCancelled()) return false;
    entry.port = port;
    return true;
}

void MessagePortServer::setReady(PortThread& entry) {
    wait_->update([&entry] { entry.isReady = true; });
}

}  // namespace quorvane
