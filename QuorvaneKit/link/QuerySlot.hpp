// One of the client's four channels to the query ports: a queue and its port.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "platform/Log.hpp"
#include "platform/MessagePort.hpp"
#include "platform/SerialQueue.hpp"

namespace quorvane {

// The outcome of a query.
struct QueryOutcome {
    enum class Kind { sent, notSent, expiredInQueue };
    Kind kind = Kind::notSent;
    std::int32_t status = 0;       // for `sent`: the port's send status
    std::optional<Bytes> reply{};  // for `sent`: nullopt when there was none
    bool operator==(const QueryOutcome&) const = default;
};

// Returns the slot for the next query: the one with the least load. Among equals, the first after
// the slot used last.
std::size_t chooseQuerySlot(const std::array<int, kQueryPortCount>& load,
                            std::optional<std::size_t> lastUsed);

// The sending end of one query port, connected on first use. Used on its slot's queue, except
// `cancel` and `notAvailable`, which any thread may call.
class QueryPort {
public:
    struct Services {
        ConnectPort connectPort;
        std::function<std::optional<Bytes>()> secret;
        std::function<Instant()> now;
        Logger log;
    };

    QueryPort(std::size_t index, std::string name, Services services);

    // Blocks until the query is answered or has failed. A dead port is dropped, so that the next
    // query looks it up again.
    QueryOutcome send(MessageType type, ByteView payload, Duration timeout, Instant enqueued);
    void forgetRemotePort();
    // Cancels the query in flight and rejects all later ones.
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

// Used on the main thread. Sends queries one at a time, in order.
class QuerySlot {
public:
    QuerySlot(std::size_t index, std::string name, const MakeSerialQueue& makeSerialQueue,
              QueryPort::Services services);

    // `done` runs on the slot's queue, or inside the call when the system refuses the queue's
    // thread. It does not run after the slot is destroyed.
    void send(MessageType type, Bytes payload, Duration timeout, Instant enqueued,
              std::function<void(QueryOutcome)> done);
    // Takes effect after the query in flight, if there is one.
    void forgetRemotePort();
    // Permanent: the query in flight ends at once.
    void cancel() { port_->cancel(); }

private:
    std::shared_ptr<QueryPort> port_;  // shared only so that queued work can hold it weakly
    std::unique_ptr<SerialQueue> queue_;
    bool mayHoldRemotePort_ = false;  // if false, forgetting need not wake the queue's thread
};

}  // namespace quorvane
