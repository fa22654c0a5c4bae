// Sends a hundred thousand requests from 64 clients at once, with right and wrong secrets, and
// counts those that are lost or answered wrongly. Also measures the server's memory and throughput.

#include <sys/mman.h>

#include <atomic>
#include <barrier>
#include <thread>

#include "bench/LinkServer.hpp"
#include "bench/ProcessFigures.hpp"
#include "bench/Report.hpp"
#include "bench/SampleStates.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

constexpr int kClients = 64;
constexpr int kRequests = 100'000;
constexpr int kKinds = 8;
constexpr int kRequestsPerClient = kRequests / kClients / kKinds * kKinds;
constexpr std::size_t kArtworkSize = 20 * 1024;

// Shared by both processes.
struct Counts {
    std::atomic<int> states;
    std::atomic<int> volumes;
    std::atomic<int> hellos;
};

Counts& sharedCounts() {
    void* const memory =
        mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) die("mmap");
    return *new (memory) Counts{};
}

MessagePortHandlers countingHandlers(Counts& counts) {
    MessagePortHandlers handlers;
    handlers.onStateRequested = [&counts, artwork = sampleArtwork(kArtworkSize, 1)] {
        ++counts.states;
        return std::optional{sampleState(artwork)};
    };
    handlers.onVolumeChangeReceived = [&counts](std::int64_t) { ++counts.volumes; };
    handlers.onLockScreenHelloReceived = [&counts](Bytes request, const auto& answer) {
        ++counts.hellos;
        answer(std::move(request));
    };
    return handlers;
}

// A client: its connections, and a count of wrong replies.
class Client {
public:
    Client(const std::filesystem::path& folder, int number)
        : main_(makeConnectPortLinux(folder)(std::string{kMessagePortBaseName})),
          query_(makeConnectPortLinux(folder)(queryPortName(
              kMessagePortBaseName, static_cast<std::size_t>(number) % kQueryPortCount))) {
        if (!main_ || !query_) die("a client's connection");
    }

    void request(int number) {
        switch (number % kKinds) {
            case 0:
            case 1: return state(true);
            case 2: return state(false);
            case 3: return volume(true);
            case 4: return volume(false);
            case 5: return hello(true);
            case 6: return hello(false);
            default: return toTheWrongPort();
        }
    }
    // Waits until the server has handled all earlier requests.
    void settle() { state(false); }
    int wrong() const { return wrong_; }

private:
    PortReply send(RemotePort& port, MessageType type, bool isRight, std::string_view payload = "",
                   bool awaitsReply = true) {
        Bytes secret = LinkServer::secret();
        if (!isRight) secret.back() = std::byte{8};
        const PortReply reply = port.send({.messageID = std::to_underlying(type),
                                           .secret = secret,
                                           .body = bytesOf(payload),
                                           .sendTimeout = std::chrono::seconds{20},
                                           .receiveTimeout = std::chrono::seconds{20},
                                           .awaitsReply = awaitsReply});
        if (reply.status != kPortSuccess) ++wrong_;
        return reply;
    }
    void state(bool isRight) {
        const auto reply = send(*main_, MessageType::requestState, isRight);
        const bool isState = reply.body && reply.body->size() > kArtworkSize;
        if (isRight ? !isState : reply.body.has_value()) ++wrong_;
    }
    void volume(bool isRight) { send(*main_, MessageType::setVolume, isRight, "2", false); }
    void hello(bool isRight) {
        const auto reply = send(*query_, MessageType::lockScreenHello, isRight, "hello");
        const bool isEcho = reply.body && textOf(*reply.body) == "hello";
        if (isRight ? !isEcho : reply.body.has_value()) ++wrong_;
    }
    void toTheWrongPort() {
        if (send(*query_, MessageType::requestState, true).body) ++wrong_;
    }

    std::unique_ptr<RemotePort> main_;
    std::unique_ptr<RemotePort> query_;
    int wrong_ = 0;
};

struct Outcome {
    double seconds = 0;
    int wrong = 0;
    ProcessMemory early{};  // after the first fifth
    ProcessMemory late{};
};

Outcome storm(const std::filesystem::path& folder, pid_t server) {
    Outcome outcome;
    std::atomic<int> wrong = 0;
    const auto begin = std::chrono::steady_clock::now();
    constexpr int kEarly = kRequestsPerClient / 5;
    std::barrier fifth{kClients + 1};
    std::vector<std::thread> clients;
    for (int number = 0; number < kClients; ++number)
        clients.emplace_back([&, number] {
            Client client{folder, number};
            for (int i = 0; i < kRequestsPerClient; ++i) {
                client.request(i + number);
                if (i == kEarly) fifth.arrive_and_wait();
            }
            client.settle();
            wrong += client.wrong();
        });
    fifth.arrive_and_wait();
    outcome.early = memoryOf(server);
    for (std::thread& client : clients) client.join();
    outcome.late = memoryOf(server);
    outcome.seconds = microsecondsSince(begin) / 1e6;
    outcome.wrong = wrong;
    return outcome;
}

int runBench() {
    const TemporaryFolder folder;
    Counts& counts = sharedCounts();
    const LinkServer server{secondProcessor(), folder.path(),
                            [&] { return countingHandlers(counts); }};
    pin(0);
    const Outcome outcome = storm(folder.path(), server.pid());

    constexpr int kSent = kClients * kRequestsPerClient;
    constexpr int kOfAKind = kSent / kKinds;
    const int misplaced = std::abs(counts.states - 2 * kOfAKind) +
                          std::abs(counts.volumes - kOfAKind) + std::abs(counts.hellos - kOfAKind);
    const double growth = outcome.late.anonymous - outcome.early.anonymous;
    beginReport("The server: 64 clients at once, right and wrong secrets mixed");
    report({.what = std::to_string(kSent) + " requests: lost, or wrongly answered or dropped",
            .figure = std::to_string(outcome.wrong + misplaced),
            .goal = "0",
            .isMet = outcome.wrong + misplaced == 0,
            .reason = "a fault"});
    report({.what = "growth of its memory from the first fifth to the end",
            .figure = sizeText(growth) + " of " + sizeText(outcome.late.anonymous),
            .goal = "flat (≤ 1 MB)",
            .isMet = growth <= 1e6,
            .reason = "the server holds replies until their clients read them"});
    report({.what = "throughput",
            .figure = numberText(kSent / outcome.seconds / 1000, " thousand requests a second")});
    return 0;
}

}  // namespace
}  // namespace quorvane

int main() { return quorvane::runBench(); }
