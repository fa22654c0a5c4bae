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
    kPortSendTimeout = -1,     // the request was not taken in time
    kPortReceiveTimeout = -2,  // it was taken, the reply did not come in time
    kPortIsInvalid = -3,       // the port is known to be dead; nothing was sent
    kPortTransportError =
        -4,  // the port died or refused while sending, or the message is over the bound
    kPortBecameInvalid = -5,  // the port died while the reply was awaited
};

struct PortRequest {
    std::int32_t messageID = 0;
    ByteView secret{};  // the body's beginning, apart: copies of it are the sender's to wipe
    ByteView body{};
    Duration sendTimeout{};
    Duration receiveTimeout{};  // not looked at when no reply is awaited
    bool awaitsReply = false;
    Bytes replyMemory{};  // of an earlier reply, for this one's body; need not be used
};

struct PortReply {
    std::int32_t status = kPortSuccess;
    std::optional<Bytes> body{};  // absent when none came; a server's empty reply is absent too
};

// The sending end of one port. One thread at a time, but for `cancel`. A waiting send on the main
// thread may run the main loop: notices, timers and even the destruction of this object's owner can
// happen inside `send`. Destroying it closes the port; destroying it inside its own `send` is safe
// and ends that send with kPortBecameInvalid.
class RemotePort {
public:
    virtual ~RemotePort() = default;
    virtual PortReply send(PortRequest request) = 0;
    // Any thread. Ends a send under way and all later ones at once, with the statuses of a port
    // that has died.
    virtual void cancel() = 0;
};

// Nothing when no process serves the name. Any thread.
using ConnectPort = std::function<std::unique_ptr<RemotePort>(const std::string& name)>;

// The body of a reply. What is long, and the same from one reply to the next, need not be copied
// into each: it is shared, and put in between.
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
    std::size_t place = 0;  // of `shared` within `bytes`
};

// Answers one request on the thread that runs the port; an empty answer is an empty reply.
using PortHandler = std::function<PortAnswer(std::int32_t messageID, ByteView body)>;

// The serving end of one port. `run` serves requests on the calling thread until `stop`, which any
// thread may call, also before `run`. The name is free again when the object is destroyed or its
// process dies.
class LocalPort {
public:
    virtual ~LocalPort() = default;
    virtual void run() = 0;
    virtual void stop() = 0;
};

// Nothing when another process (or another port of this one) serves the name. Any thread.
using OpenPort =
    std::function<std::unique_ptr<LocalPort>(const std::string& name, PortHandler handler)>;

}  // namespace quorvane
