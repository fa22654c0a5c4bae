// One of the client's four ways to the query ports: a queue of its own and the port at its end.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "QuorvaneKit/link/MessagePortClient.hpp"
#include "QuorvaneKit/link/PortNames.hpp"

namespace quorvane {

// The slot for the next query: the one with the least load, and among equals the one that comes
// first after the slot used last.
std::size_t chooseQuerySlot(const std::array<int, kQueryPortCount>& load,
                            std::optional<std::size_t> lastUsed);

// The sending end of one query port, made on first use. Lives on its slot's queue, but for `cancel`
// and `notAvailable`, which any thread may call.
class QueryPort {
public:
    struct Services {
        ConnectPort connectPort;
        std::function<std::optional<Bytes>()> secret;
        std::function<Instant()> now;
        Logger log;
    };

    QueryPort(std::size_t index, std::string name, Services services);

    // Blocks until the query is answered or has failed. A port found dead is forgotten, so that the
    // next query looks it up again.
    QueryOutcome send(MessageType type, ByteView payload, Duration timeout, Instant enqueued);
    void forgetRemotePort();
    // Ends the query under way and refuses all later ones.
    void cancel();
    // Logs that the query was not sent.
    QueryOutcome notAvailable(MessageType type) const;

private:
    std::optional<Bytes> readSecret(MessageType type) const;
    std::shared_ptr<RemotePort> connectedPort();
    bool isCancelled() const;

    const std::int64_t index_;
    const std::string name_;
    const Services services_;
    mutable std::mutex mutex_;
    std::shared_ptr<RemotePort> remotePort_;  // under mutex_, changed on the queue only
    bool isCancelled_ = false;                // under mutex_
};

// Lives on the main thread. Queries go out one at a time, in order.
class QuerySlot {
public:
    QuerySlot(std::size_t index, std::string name, const MakeSerialQueue& makeSerialQueue,
              QueryPort::Services services);

    // `done` runs on the slot's queue, or inside the call when the system refuses the queue's
    // thread; not at all once the slot is gone.
    void send(MessageType type, Bytes payload, Duration timeout, Instant enqueued,
              std::function<void(QueryOutcome)> done);
    // After the query in flight, if there is one.
    void forgetRemotePort();
    // For good: the query in flight ends at once.
    void cancel() { port_->cancel(); }

private:
    std::shared_ptr<QueryPort> port_;  // shared only to be held weakly by what waits in the queue
    std::unique_ptr<SerialQueue> queue_;
    bool mayHoldRemotePort_ = false;  // otherwise its queue's thread need not be woken to forget
};

}  // namespace quorvane
