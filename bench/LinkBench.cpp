// A call over a message port against the same bytes over a bare blocking Unix stream.
//
// Each side of each rival is a process of its own, both pinned: clients to one processor, servers
// to another (or all to one with --same-cpu). Rounds of both take turns, and each figure is the
// median of its rounds. A port call is all of it: framing with the secret, both time limits, the
// secret's check, a fresh buffer for the reply. The bare stream knows every length beforehand and
// reuses its buffers. Making the reply's contents is nobody's part of it.

#include <sched.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "QuorvaneKit/MessagePortWire.hpp"
#include "platform/linux/MessagePortsLinux.hpp"

namespace quorvane {
namespace {

constexpr std::int32_t kMessage = 1;
constexpr std::size_t kSizes[] = {33, 1024, 64 * 1024, 512 * 1024, 1024 * 1024};
constexpr std::size_t kSmall = MessagePortWire::kSecretLength + 1;
constexpr int kRounds = 151;
constexpr char kPortName[] = "bench";

[[noreturn]] void die(const char* what) {
    std::perror(what);
    std::exit(1);
}

void pin(int processor) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(static_cast<std::size_t>(processor), &set);
    if (sched_setaffinity(0, sizeof set, &set) != 0) die("sched_setaffinity");
}

const Bytes& secret() {
    static const Bytes bytes(MessagePortWire::kSecretLength, std::byte{7});
    return bytes;
}

// What a call carries: a framed request and a reply of these lengths.
struct Shape {
    std::size_t request;
    std::size_t reply;
};

void readAll(int socket, std::byte* place, std::size_t size) {
    while (size > 0) {
        const ssize_t count = read(socket, place, size);
        if (count <= 0) _exit(0);
        place += count;
        size -= static_cast<std::size_t>(count);
    }
}

void writeAll(int socket, const std::byte* place, std::size_t size) {
    while (size > 0) {
        const ssize_t count = write(socket, place, size);
        if (count <= 0) _exit(0);
        place += count;
        size -= static_cast<std::size_t>(count);
    }
}

class Rival {
public:
    virtual ~Rival() = default;
    virtual void call() = 0;
};

class BareStream final : public Rival {
public:
    BareStream(Shape shape, int serverProcessor)
        : request_(shape.request, std::byte{1}), reply_(shape.reply, std::byte{2}) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) die("socketpair");
        server_ = fork();
        if (server_ == 0) {
            close(ends[0]);
            pin(serverProcessor);
            serve(ends[1]);
        }
        close(ends[1]);
        socket_ = ends[0];
    }
    ~BareStream() override {
        close(socket_);
        waitpid(server_, nullptr, 0);
    }
    void call() override {
        writeAll(socket_, request_.data(), request_.size());
        readAll(socket_, reply_.data(), reply_.size());
    }

private:
    [[noreturn]] void serve(int socket) {
        while (true) {
            readAll(socket, request_.data(), request_.size());
            writeAll(socket, reply_.data(), reply_.size());
        }
    }

    Bytes request_;
    Bytes reply_;
    int socket_ = -1;
    pid_t server_ = -1;
};

class PortCall final : public Rival {
public:
    PortCall(Shape shape, int serverProcessor, const std::filesystem::path& folder)
        : payload_(shape.request - MessagePortWire::kSecretLength, std::byte{1}),
          replySize_(shape.reply) {
        int ready[2];
        if (pipe(ready) != 0) die("pipe");
        server_ = fork();
        if (server_ == 0) {
            pin(serverProcessor);
            serve(folder, ready[1]);
        }
        std::byte signal;
        close(ready[1]);
        if (read(ready[0], &signal, 1) != 1) die("the serving process");
        close(ready[0]);
        port_ = makeConnectPortLinux(folder)(kPortName);
        if (port_ == nullptr) die("connecting the port");
    }
    ~PortCall() override {
        kill(server_, SIGKILL);
        waitpid(server_, nullptr, 0);
    }
    void call() override {
        auto framed = MessagePortWire::wrap(payload_, secret(), std::move(framed_));
        const PortReply reply = port_->send({.messageID = kMessage,
                                             .body = *framed,
                                             .sendTimeout = std::chrono::seconds{1},
                                             .receiveTimeout = std::chrono::seconds{1},
                                             .awaitsReply = true});
        MessagePortWire::wipeSecret(*framed);
        framed_ = *std::move(framed);
        if (reply.status != kPortSuccess || !reply.body || reply.body->size() != replySize_) {
            std::fprintf(stderr, "a call failed with status %d\n", reply.status);
            std::exit(1);
        }
    }

private:
    [[noreturn]] void serve(const std::filesystem::path& folder, int ready) {
        const auto handler = [this](std::int32_t, ByteView body) {
            return MessagePortWire::unwrap(body, secret()) ? Bytes(replySize_) : Bytes{};
        };
        const auto port = makeOpenPortLinux(folder)(kPortName, handler);
        if (port == nullptr) die("opening the port");
        if (write(ready, "r", 1) != 1) die("write");
        port->run();
        _exit(0);
    }

    const Bytes payload_;
    const std::size_t replySize_;
    Bytes framed_;
    std::unique_ptr<RemotePort> port_;
    pid_t server_ = -1;
};

double microsecondsPerCall(Rival& rival, int calls) {
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i) rival.call();
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - begin;
    return time.count() / calls;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void compare(const char* title, Shape shape, int serverProcessor,
             const std::filesystem::path& folder) {
    BareStream bare{shape, serverProcessor};
    PortCall port{shape, serverProcessor, folder};
    // About two milliseconds a round: short against other programs' turns.
    const int calls =
        static_cast<int>(std::clamp(2000.0 / microsecondsPerCall(bare, 200), 3.0, 2000.0));
    microsecondsPerCall(port, calls);
    std::vector<double> bareTimes;
    std::vector<double> portTimes;
    std::vector<double> ratios;
    for (int round = 0; round < kRounds; ++round) {
        bareTimes.push_back(microsecondsPerCall(bare, calls));
        portTimes.push_back(microsecondsPerCall(port, calls));
        ratios.push_back(portTimes.back() / bareTimes.back());
    }
    std::printf("%-22s %8zu %8zu %7.2f %11.2f %11.2f\n", title, shape.request, shape.reply,
                median(ratios), median(portTimes), median(bareTimes));
}

int runBench(bool onOneProcessor) {
    signal(SIGPIPE, SIG_IGN);
    const int processors = static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN));
    const int serverProcessor = onOneProcessor || processors < 2 ? 0 : 1;
    pin(0);
    std::string folder = std::filesystem::temp_directory_path() / "link-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) die("mkdtemp");
    std::printf("%-22s %8s %8s %7s %11s %11s\n", "", "request", "reply", "ratio", "port, us",
                "bare, us");
    for (const std::size_t size : kSizes)
        compare("state, small request", {kSmall, size}, serverProcessor, folder);
    for (const std::size_t size : kSizes)
        compare("both of the size", {size, size}, serverProcessor, folder);
    std::filesystem::remove_all(folder);
    return 0;
}

}  // namespace
}  // namespace quorvane

int main(int argumentCount, char** arguments) {
    const bool onOneProcessor = argumentCount > 1 && std::strcmp(arguments[1], "--same-cpu") == 0;
    if (argumentCount > 1 && !onOneProcessor) {
        std::fprintf(stderr, "usage: %s [--same-cpu]\n", arguments[0]);
        return 2;
    }
    return quorvane::runBench(onOneProcessor);
}
