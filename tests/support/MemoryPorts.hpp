// Message ports inside one process. Local ports serve on the thread that runs them, as real ones
// do; ports made by `serve` answer inside the send, on the sender's thread, so that a test of one
// thread can follow every step.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

// One behind the other.
inline Bytes joined(std::span<const ByteView> parts) {
    Bytes bytes;
    for (const ByteView part : parts) append(bytes, part);
    return bytes;
}

// A request's body as it arrives.
inline Bytes framed(ByteView payload, ByteView secret) {
    return joined(std::array{secret, payload});
}

// Outlives its ports. Any thread, but for the fields.
class MemoryPorts {
public:
    struct Sent {
        std::string port;
        std::int32_t messageID;
        Bytes body;
        Duration sendTimeout;
        Duration receiveTimeout;
        bool awaitsReply;
        std::size_t replyMemory;  // its size
    };
    // A send that found its port alive, in order; not those of local ports.
    std::vector<Sent> sent;
    // Called inside each send to a port of `serve`, before it is answered: what a waiting send on
    // the main thread may run. Taken out before it is called.
    std::function<void()> duringSend;
    // The status with which sends to a port of `serve` end in place of an answer.
    std::map<std::string, std::int32_t> failures;

    int cancelled = 0;  // sending ends

    static constexpr std::size_t kLargestBody = 32 * 1024 * 1024;

    ConnectPort connectPort() {
        return [this](const std::string& name) -> std::unique_ptr<RemotePort> {
            const std::lock_guard guard{registry_->mutex};
            const auto port = registry_->ports.find(name);
            if (port == registry_->ports.end()) return nullptr;
            return std::make_unique<Remote>(*this, port->second);
        };
    }
    OpenPort openPort() {
        return [registry = registry_](const std::string& name,
                                      PortHandler handler) -> std::unique_ptr<LocalPort> {
            const auto port = std::make_shared<Port>(name, std::move(handler), false);
            const std::lock_guard guard{registry->mutex};
            if (!registry->ports.try_emplace(name, port).second) return nullptr;
            return std::make_unique<Local>(registry, port);
        };
    }
    // A client's request, whose reply is awaited; where there is no port its status is 999.
    PortReply ask(const std::string& name, std::int32_t messageID, const Bytes& body) {
        const auto remote = connectPort()(name);
        if (remote == nullptr) return {.status = 999};
        constexpr Duration kLong = std::chrono::seconds{20};
        return remote->send({.messageID = messageID,
                             .body = body,
                             .sendTimeout = kLong,
                             .receiveTimeout = kLong,
                             .awaitsReply = true});
    }
    // Dropping the handle is the server's death.
    Handle serve(const std::string& name, PortHandler handler) {
        const auto port = std::make_shared<Port>(name, std::move(handler), true);
        const std::lock_guard guard{registry_->mutex};
        registry_->ports.insert_or_assign(name, port);
        return Handle{[registry = registry_, port] { registry->remove(port); }};
    }

private:
    struct Call {
        std::int32_t messageID;
        Bytes body;
        bool isAnswered = false;
        PortAnswer reply;
    };
    struct Port {
        Port(std::string itsName, PortHandler itsHandler, bool inside)
            : name(std::move(itsName)), handler(std::move(itsHandler)), answersInside(inside) {}

        const std::string name;
        const PortHandler handler;
        const bool answersInside;
        std::mutex mutex;
        std::condition_variable changed;
        std::deque<std::shared_ptr<Call>> waiting;
        bool isStopped = false;
        bool isDead = false;
    };
    struct Registry {
        std::mutex mutex;
        std::map<std::string, std::shared_ptr<Port>> ports;

        void remove(const std::shared_ptr<Port>& port) {
            {
                const std::lock_guard guard{mutex};
                const auto entry = ports.find(port->name);
                if (entry != ports.end() && entry->second == port) ports.erase(entry);
            }
            const std::lock_guard guard{port->mutex};
            port->isDead = true;
            port->changed.notify_all();
        }
    };

    class Remote final : public RemotePort {
    public:
        Remote(MemoryPorts& owner, std::shared_ptr<Port> port)
            : owner_(owner), port_(std::move(port)) {}

        PortReply send(PortRequest request) override {
            const auto port = port_;
            if (request.secret.size() + request.body.size() > kLargestBody)
                return {.status = kPortTransportError};
            return port->answersInside ? sendInside(*port, request) : sendAcross(*port, request);
        }
        void cancel() override {
            life_.reset();
            ++owner_.cancelled;
        }

    private:
        // This object may be destroyed inside.
        PortReply sendInside(Port& port, const PortRequest& request) {
            const std::weak_ptr<bool> alive = life_;
            MemoryPorts& owner = owner_;
            if (port.isDead) return {.status = kPortIsInvalid};
            owner.sent.push_back({port.name, request.messageID,
                                  framed(request.body, request.secret), request.sendTimeout,
                                  request.receiveTimeout, request.awaitsReply,
                                  request.replyMemory.capacity()});
            if (const auto action = std::exchange(owner.duringSend, nullptr)) action();
            if (alive.expired() || port.isDead) return {.status = kPortBecameInvalid};
            if (const auto failure = owner.failures.find(port.name);
                failure != owner.failures.end())
                return {.status = failure->second};
            return reply(request,
                         port.handler(request.messageID, framed(request.body, request.secret)));
        }

        // A message longer than this waits until its server looks at it.
        static constexpr std::size_t kTakenAtOnce = 64 * 1024;

        static PortReply sendAcross(Port& port, const PortRequest& request) {
            const auto call = std::make_shared<Call>(
                request.messageID, framed(request.body, request.secret), false, PortAnswer{});
            std::unique_lock lock{port.mutex};
            if (port.isDead) return {.status = kPortIsInvalid};
            port.waiting.push_back(call);
            port.changed.notify_all();
            if (request.body.size() > kTakenAtOnce) {
                const auto isTaken = [&] { return std::ranges::count(port.waiting, call) == 0; };
                port.changed.wait_for(lock, request.sendTimeout,
                                      [&] { return port.isDead || isTaken(); });
                if (!isTaken()) {
                    std::erase(port.waiting, call);
                    return {.status = port.isDead ? kPortTransportError : kPortSendTimeout};
                }
            }
            if (!request.awaitsReply) return {};
            port.changed.wait_for(lock, request.receiveTimeout,
                                  [&] { return port.isDead || call->isAnswered; });
            if (!call->isAnswered)
                return {.status = port.isDead ? kPortBecameInvalid : kPortReceiveTimeout};
            return reply(request, call->reply);
        }

        static PortReply reply(const PortRequest& request, const PortAnswer& answer) {
            Bytes body = joined(answer.parts());
            if (body.size() > kLargestBody) return {.status = kPortTransportError};
            if (!request.awaitsReply || body.empty()) return {};
            return {.status = kPortSuccess, .body = std::move(body)};
        }

        MemoryPorts& owner_;
        const std::shared_ptr<Port> port_;
        std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
    };

    class Local final : public LocalPort {
    public:
        Local(std::shared_ptr<Registry> registry, std::shared_ptr<Port> port)
            : registry_(std::move(registry)), port_(std::move(port)) {}
        ~Local() override { registry_->remove(port_); }

        void run() override {
            std::unique_lock lock{port_->mutex};
            while (true) {
                port_->changed.wait(lock,
                                    [&] { return port_->isStopped || !port_->waiting.empty(); });
                if (port_->isStopped) return;
                const auto call = port_->waiting.front();
                port_->waiting.pop_front();
                port_->changed.notify_all();
                lock.unlock();
                PortAnswer reply = port_->handler(call->messageID, call->body);
                lock.lock();
                call->reply = std::move(reply);
                call->isAnswered = true;
                port_->changed.notify_all();
            }
        }
        void stop() override {
            const std::lock_guard guard{port_->mutex};
            port_->isStopped = true;
            port_->changed.notify_all();
        }

    private:
        const std::shared_ptr<Registry> registry_;
        const std::shared_ptr<Port> port_;
    };

    std::shared_ptr<Registry> registry_ = std::make_shared<Registry>();
};

}  // namespace quorvane
