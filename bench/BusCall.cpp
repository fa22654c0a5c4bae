// sd-bus, through dbus-daemon and peer to peer, as rivals of the link.
#include <sys/socket.h>
#include <systemd/sd-bus.h>

#include "bench/LinkRival.hpp"
#include "bench/ServerProcess.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {
namespace {

constexpr char kName[] = "org.example.Bench";
constexpr char kMember[] = "Call";

void check(int result, const char* what) {
    if (result >= 0) return;
    errno = -result;
    die(what);
}

// An empty address means a stream between the two processes, of which `socket` is one end.
sd_bus* open(const std::string& address, int socket, bool isServer) {
    sd_bus* bus = nullptr;
    check(sd_bus_new(&bus), "sd_bus_new");
    if (!address.empty()) {
        check(sd_bus_set_address(bus, address.c_str()), "sd_bus_set_address");
        check(sd_bus_set_bus_client(bus, true), "sd_bus_set_bus_client");
    } else {
        check(sd_bus_set_fd(bus, socket, socket), "sd_bus_set_fd");
        sd_id128_t id{};
        id.bytes[0] = 1;
        if (isServer) check(sd_bus_set_server(bus, true, id), "sd_bus_set_server");
    }
    check(sd_bus_start(bus), "sd_bus_start");
    return bus;
}

class BusCall final : public LinkRival {
public:
    BusCall(LinkShape shape, int processor, const std::string& address)
        : request_(shape.request, std::byte{1}),
          reply_(shape.reply, std::byte{2}),
          address_(address),
          server_(processor, [this](const auto& ready) { serve(ready); }),
          bus_(open(address_, ends_.sockets[0], false)) {
        close(ends_.sockets[1]);
    }
    ~BusCall() override { sd_bus_unref(bus_); }

    void call() override {
        sd_bus_message* message = nullptr;
        sd_bus_message* answer = nullptr;
        check(sd_bus_message_new_method_call(bus_, &message, address_.empty() ? nullptr : kName,
                                             "/bench", kName, kMember),
              "a method call");
        check(sd_bus_message_append_array(message, 'y', request_.data(), request_.size()),
              "the request");
        check(sd_bus_call(bus_, message, 10'000'000, nullptr, &answer), "sd_bus_call");
        const void* bytes = nullptr;
        std::size_t size = 0;
        check(sd_bus_message_read_array(answer, 'y', &bytes, &size), "the reply");
        if (size != reply_.size()) std::abort();
        sd_bus_message_unref(answer);
        sd_bus_message_unref(message);
    }

private:
    struct Ends {
        Ends() {
            if (socketpair(AF_UNIX, SOCK_STREAM, 0, sockets) != 0) die("socketpair");
        }
        int sockets[2];
    };

    void serve(const std::function<void()>& ready) {
        close(ends_.sockets[0]);
        sd_bus* const bus = open(address_, ends_.sockets[1], true);
        if (!address_.empty()) check(sd_bus_request_name(bus, kName, 0), "sd_bus_request_name");
        ready();
        while (true) {
            sd_bus_message* message = nullptr;
            const int progress = sd_bus_process(bus, &message);
            if (progress < 0) return;
            if (sd_bus_message_is_method_call(message, kName, kMember) > 0) answer(message);
            sd_bus_message_unref(message);
            if (progress == 0) sd_bus_wait(bus, UINT64_MAX);
        }
    }

    void answer(sd_bus_message* message) const {
        const void* bytes = nullptr;
        std::size_t size = 0;
        check(sd_bus_message_read_array(message, 'y', &bytes, &size), "the request");
        sd_bus_message* reply = nullptr;
        check(sd_bus_message_new_method_return(message, &reply), "a reply");
        check(sd_bus_message_append_array(reply, 'y', reply_.data(), reply_.size()), "the reply");
        check(sd_bus_send(nullptr, reply, nullptr), "sd_bus_send");
        sd_bus_message_unref(reply);
    }

    const Bytes request_;
    const Bytes reply_;
    const std::string address_;
    const Ends ends_;
    ServerProcess server_;
    sd_bus* const bus_;
};

}  // namespace

std::unique_ptr<LinkRival> makeBusCall(LinkShape shape, int processor, const std::string& address) {
    return std::make_unique<BusCall>(shape, processor, address);
}

}  // namespace quorvane
