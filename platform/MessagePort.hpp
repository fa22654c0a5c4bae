// Named local message ports: one request, at most one reply.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Bytes.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// The status numbers of a send, the same on every system.
enum PortStatus : std::int32_t {
    kPortSuccess = 0,
    kPortSendTimeout = -1,     // the server did not accept the request in time
    kPortReceiveTimeout = -2,  // the request was sent, but the reply did not arrive in time
    kPortIsInvalid = -3,       // the port is known to be dead; nothing was sent
    kPortTransportError =
        -4,  // the port died or refused while sending, or the message exceeds the limit
    kPortBecameInvalid = -5,  // the port died while the client waited for the reply
};

struct PortRequest {
    std::int32_t messageID = 0;
    ByteView secret{};  // start of the body; `send` wipes its own copies of it
    ByteView body{};
    Duration sendTimeout{};
    Duration receiveTimeout{};  // ignored when no reply is awaited
    bool awaitsReply = false;
    Bytes replyMemory{};  // buffer of an earlier reply that `send` may reuse
};

struct PortReply {
    std::int32_t status = kPortSuccess;
    std::optional<Bytes> body{};  // nullopt without a reply, and for an empty reply
};

// The sending end of one port. One thread at a time, except `cancel`. A `send` that waits on the
// main thread may run the main loop: notices and timers can fire inside `send`, and this object's
// owner can be destroyed. Destroying the object closes the port. Destroying it inside its own
// `send` is safe and ends that send with kPortBecameInvalid.
class RemotePort {
public:
    virtual ~RemotePort() = default;
    virtual PortReply send(PortRequest request) = 0;
    // Any thread. Ends the current send and fails all later ones at once, with the statuses of a
    // dead port.
    virtual void cancel() = 0;
};

// Returns null when no process serves the name. Any thread.
using ConnectPort = std::function<std::unique_ptr<RemotePort>(const std::string& name)>;

// The body of a reply. A long part that is the same in many replies is shared and inserted at
// `place`, so that it is not copied into each reply.
struct PortAnswer {
    PortAnswer() = default;
    PortAnswer(Bytes whole) : bytes(std::move(whole)) {}

    // The body in order; parts may be empty.
    std::array<ByteView, 3> parts() const {
        const ByteView own{bytes};
        return {own.first(place), shared ? ByteView{*shared} : ByteView{}, own.subspan(place)};
    }
    std::size_t size() const { return bytes.size() + (shared ? shared->size() : 0); }

    Bytes bytes;
    std::shared_ptr<const Bytes> shared;
    std::size_t place = 0;  // offset in `bytes` where `shared` is inserted
};

// Answers one request on the thread that runs the port. An empty answer sends an empty reply.
using PortHandler = std::function<PortAnswer(std::int32_t messageID, ByteView body)>;

// The serving end of one port. `run` serves requests on the calling thread until `stop`. Any thread
// may call `stop`, even before `run`. Destroying the object, or the end of its process, frees the
// name.
class LocalPort {
public:
    virtual ~LocalPort() = default;
    virtual void run() = 0;
    virtual void stop() = 0;
};

// Returns null when another process, or another port of this one, serves the name. Any thread.
using OpenPort =
    std::function<std::unique_ptr<LocalPort>(const std::string& name, PortHandler handler)>;

}  // namespace quorvane
