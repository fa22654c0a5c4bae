// A service on a private bus, simulated by the test over its own connection.
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// Handles every call that reaches it from the given loop, in which the code under test runs too.
class FakeBusService {
public:
    // Fills in the answer and says whether there is one; other calls end in an error.
    using Handler = std::function<bool(const std::string& member, sd_bus_message* call,
                                       sd_bus_message* answer)>;

    FakeBusService(EventLoop& loop, const std::string& address, const std::string& name,
                   Handler handler)
        : handler_(std::move(handler)) {
        sd_bus_new(&bus_);
        sd_bus_set_address(bus_, address.c_str());
        sd_bus_set_bus_client(bus_, 1);
        sd_bus_start(bus_);
        sd_bus_add_filter(bus_, nullptr, handle, this);
        sd_bus_request_name(bus_, name.c_str(), 0);
        attach(loop);
    }
    ~FakeBusService() { sd_bus_flush_close_unref(bus_); }
    FakeBusService(const FakeBusService&) = delete;
    FakeBusService& operator=(const FakeBusService&) = delete;

    void requestName(const std::string& name) { sd_bus_request_name(bus_, name.c_str(), 0); }
    // A detached service hangs, although its name is on the bus.
    void attach(EventLoop& loop) { sd_bus_attach_event(bus_, loop.event(), 0); }
    void detach() { sd_bus_detach_event(bus_); }
    // The member of each call that came in.
    const std::vector<std::string>& calls() const { return calls_; }

    // Returns when the bus has forwarded the signal, so that signals of several services keep their
    // order.
    template <typename... Arguments>
    void signal(const char* path, const char* interface, const char* member, const char* types,
                Arguments... arguments) {
        sd_bus_emit_signal(bus_, path, interface, member, types, arguments...);
        sd_bus_call_method(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                           "org.freedesktop.DBus", "GetId", nullptr, nullptr, "");
    }

private:
    static int handle(sd_bus_message* message, void* self, sd_bus_error*) {
        auto& service = *static_cast<FakeBusService*>(self);
        if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return 0;
        const std::string member = sd_bus_message_get_member(message);
        service.calls_.push_back(member);
        sd_bus_message* answer = nullptr;
        sd_bus_message_new_method_return(message, &answer);
        const bool isAnswered = service.handler_ && service.handler_(member, message, answer);
        if (isAnswered) sd_bus_send(service.bus_, answer, nullptr);
        sd_bus_message_unref(answer);
        return isAnswered ? 1 : 0;
    }

    sd_bus* bus_ = nullptr;
    Handler handler_;
    std::vector<std::string> calls_;
};

}  // namespace quorvane
