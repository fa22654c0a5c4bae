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

// Created, used and destroyed on the main thread. Sends queries on its queue, one at a time, in
// order.
class QuerySlot {
public:
    struct Services {
        ConnectPort connectPort;
        std::function<std::optional<Bytes>()> secret;
        std::function<Instant()> now;
        Logger log;
    };

    QuerySlot(std::size_t index, std::string name, const MakeSerialQueue& makeSerialQueue,
              Services services);
    // Cancels the query in flight and drops the waiting ones.
    ~QuerySlot();

    // `done` runs on the slot's queue, or inside the call when the system refuses the queue's
    // thread. It does not run for a dropped query.
    void send(MessageType type, Bytes payload, Duration timeout, Instant enqueued,
              std::function<void(QueryOutcome)> done);
    // Takes effect after the query in flight, if there is one.
    void forgetRemotePort();

private:
    // On the queue. Blocks until the query is answered or has failed. A dead port is dropped, so
    // that the next query looks it up again.
    QueryOutcome sendNow(MessageType type, ByteView payload, Duration timeout, Instant enqueued);
    std::optional<Bytes> readSecret(MessageType type) const;
    RemotePort* connectedPort();
    void dropRemotePort();
    bool isCancelled() const;
    // Logs that the query was not sent.
    QueryOutcome notAvailable(MessageType type) const;

    const std::int64_t index_;
    const std::string name_;
    const Services services_;
    mutable std::mutex mutex_;
    std::unique_ptr<RemotePort> remotePort_;  // under mutex_, changed on the queue only
    bool isCancelled_ = false;                // under mutex_
    bool mayHoldRemotePort_ = false;      // if false, forgetting need not wake the queue's thread
    std::unique_ptr<SerialQueue> queue_;  // destroyed first: its end waits for the query in flight
};

}  // namespace quorvane
