// Message ports inside one process. Handlers run inside the send, on the sender's thread. Those of
// `serve` run immediately, so that a single-threaded test can follow every step; those of a local
// port run while another thread runs the port.
#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/Handle.hpp"
#include "platform/MessagePort.hpp"

namespace quorvane {

// The parts in order, as one body.
inline Bytes joined(std::span<const ByteView> parts) {
    Bytes bytes;
    for (const ByteView part : parts) append(bytes, part);
    return bytes;
}

// A request's body as the receiver sees it.
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
    // The sends that found their port alive, in order; without those to local ports.
    std::vector<Sent> sent;
    // Called inside each send to a port of `serve`, before it is answered. It simulates the actions
    // that a waiting send on the main thread may run. Moved out before the call.
    std::function<void()> duringSend;
    // The status with which sends to a port of `serve` end in place of an answer.
    std::map<std::string, std::int32_t> failures;

    int cancelled = 0;  // sending ends

    ConnectPort connectPort() {
        return [this](const std::string& name) -> std::unique_ptr<RemotePort> {
            const std::lock_guard guard{mutex_};
            const auto port = ports_.find(name);
            if (port == ports_.end()) return nullptr;
            return std::make_unique<Remote>(*this, port->second);
        };
    }
    OpenPort openPort() {
        return [this](const std::string& name, PortHandler handler) -> std::unique_ptr<LocalPort> {
            const auto port = std::make_shared<Port>(name, std::move(handler));
            const std::lock_guard guard{mutex_};
            if (!ports_.try_emplace(name, port).second) return nullptr;
            return std::make_unique<Local>(*this, port);
        };
    }
    // A client's request, whose reply is awaited; where there is no port its status is 999.
    PortReply ask(const std::string& name, std::int32_t messageID, const Bytes& body) {
        const auto remote = connectPort()(name);
        if (remote == nullptr) return {.status = 999};
        return remote->send({.messageID = messageID, .body = body, .awaitsReply = true});
    }
    // Dropping the handle simulates the server's death.
    Handle serve(const std::string& name, PortHandler handler) {
        const auto port = std::make_shared<Port>(name, std::move(handler));
        port->state = Port::State::inside;
        const std::lock_guard guard{mutex_};
        ports_.insert_or_assign(name, port);
        return Handle{[this, port] { remove(*port); }};
    }

private:
    struct Port {
        enum class State { opened, running, inside, dead };

        Port(std::string itsName, PortHandler itsHandler)
            : name(std::move(itsName)), handler(std::move(itsHandler)) {}

        void change(State now) {
            const std::lock_guard guard{mutex};
            state = now;
            changed.notify_all();
        }

        const std::string name;
        const PortHandler handler;
        std::mutex mutex;  // a local port's is held while its handler runs
        std::condition_variable changed;
        State state = State::opened;
    };
    using State = Port::State;

    void remove(Port& port) {
        {
            const std::lock_guard guard{mutex_};
            const auto entry = ports_.find(port.name);
            if (entry != ports_.end() && entry->second.get() == &port) ports_.erase(entry);
        }
        port.change(State::dead);
    }

    class Remote final : public RemotePort {
    public:
        Remote(MemoryPorts& owner, std::shared_ptr<Port> port)
            : owner_(owner), port_(std::move(port)) {}

        // This object may be destroyed during the call.
        PortReply send(PortRequest request) override {
            const auto port = port_;
            MemoryPorts& owner = owner_;
            const std::weak_ptr<bool> alive = life_;
            std::unique_lock lock{port->mutex};
            port->changed.wait(lock, [&] { return port->state != State::opened; });
            if (port->state == State::dead) return {.status = kPortIsInvalid};
            const Bytes body = framed(request.body, request.secret);
            if (port->state == State::inside) {
                lock.unlock();
                owner.sent.push_back({port->name, request.messageID, body, request.sendTimeout,
                                      request.receiveTimeout, request.awaitsReply,
                                      request.replyMemory.capacity()});
                if (const auto action = std::exchange(owner.duringSend, nullptr)) action();
                if (alive.expired() || port->state == State::dead)
                    return {.status = kPortBecameInvalid};
                const auto failure = owner.failures.find(port->name);
                if (failure != owner.failures.end()) return {.status = failure->second};
            }
            Bytes reply = joined(port->handler(request.messageID, body).parts());
            if (!request.awaitsReply || reply.empty()) return {};
            return {.status = kPortSuccess, .body = std::move(reply)};
        }
        void cancel() override {
            life_.reset();
            ++owner_.cancelled;
        }

    private:
        MemoryPorts& owner_;
        const std::shared_ptr<Port> port_;
        std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
    };

    class Local final : public LocalPort {
    public:
        Local(MemoryPorts& owner, std::shared_ptr<Port> port)
            : owner_(owner), port_(std::move(port)) {}
        ~Local() override { owner_.remove(*port_); }

        void run() override {
            std::unique_lock lock{port_->mutex};
            if (port_->state == State::opened) port_->state = State::running;
            port_->changed.notify_all();
            port_->changed.wait(lock, [&] { return port_->state == State::dead; });
        }
        void stop() override { port_->change(State::dead); }

    private:
        MemoryPorts& owner_;
        const std::shared_ptr<Port> port_;
    };

    std::mutex mutex_;
    std::map<std::string, std::shared_ptr<Port>> ports_;
};

}  // namespace quorvane
