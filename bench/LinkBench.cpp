// A call over a message port, compared with other ways to carry the same bytes.
//
// Each side of each rival is a process pinned to a processor: clients to one, servers and the
// message bus to another (or all to one with --same-cpu). Rounds of all rivals alternate; a ratio
// is the median over the rounds. No rival makes the reply's contents inside the measured time.

#include <signal.h>

#include <array>
#include <cstring>

#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "bench/LinkRival.hpp"
#include "bench/Measuring.hpp"
#include "bench/Report.hpp"
#include "tests/support/PrivateBus.hpp"

namespace quorvane {
namespace {

constexpr std::size_t kSizes[] = {33, 1024, 64 * 1024, 512 * 1024, 1024 * 1024};
constexpr std::size_t kSmall = MessagePortWire::kSecretLength + 1;
constexpr std::size_t kLarge = 512 * 1024;
constexpr int kRounds = 61;

double microsecondsPerCall(LinkRival& rival, int calls) {
    return microsecondsOf([&] {
               for (int i = 0; i < calls; ++i) rival.call();
           }) /
           calls;
}

struct Contestant {
    std::unique_ptr<LinkRival> rival;
    Times times{};
    int calls = 3;

    // A round takes about two milliseconds, much less than the scheduler's time slices.
    void warmUp() {
        calls = static_cast<int>(std::clamp(2000.0 / microsecondsPerCall(*rival, 50), 3.0, 2000.0));
    }
    void round() { times.add(microsecondsPerCall(*rival, calls)); }
};

struct Place {
    int processor;
    std::filesystem::path folder;
    std::string busAddress;
};

std::string sizeName(std::size_t size) {
    if (size < 1024) return std::to_string(size) + " B";
    return size < 1024 * 1024 ? std::to_string(size / 1024) + " KB" : "1 MB";
}

// Why a rival is closer than the goal. A bare stream only lets the kernel copy the bytes and wake
// the other side, which costs every rival the same.
std::string reasonFor(double rivalOverBare, double least) {
    if (rivalOverBare >= least)
        return "the port adds framing, the secret's check and both time limits to a bare stream";
    return "a bare Unix stream is itself only " + numberText(rivalOverBare, " ×") + " faster";
}

void tell(const std::string& what, const std::array<Contestant, 4>& all, LinkShape shape) {
    const auto& [port, bare, bus, peers] = all;
    const double overBare = port.times.over(bare.times);
    report({.what = what,
            .ratio = overBare,
            .against = "bare Unix stream",
            .figure = timeText(port.times.median()) + " to " + timeText(bare.times.median()),
            .goal = "≤ 1.25 ×",
            .isMet = overBare <= 1.25,
            .reason =
                "both sides allocate memory for what they receive, and the time limits need system "
                "calls"});
    const auto faster = [&](const Contestant& rival, const char* name, double least) {
        const double times = rival.times.over(port.times);
        report({.what = "",
                .ratio = times,
                .against = name,
                .figure = timeText(rival.times.median()),
                .goal = "≥ " + numberText(least, " ×"),
                .isMet = times >= least,
                .reason = reasonFor(rival.times.over(bare.times), least)});
    };
    faster(bus, "faster than sd-bus through dbus-daemon", shape.reply >= kLarge ? 9 : 3.3);
    faster(peers, "faster than sd-bus peer to peer", 1);
}

void compare(const std::string& what, LinkShape shape, const Place& place) {
    const int processor = place.processor;
    std::array<Contestant, 4> all{Contestant{makePortCall(shape, processor, place.folder)},
                                  Contestant{makeBareStream(shape, processor)},
                                  Contestant{makeBusCall(shape, processor, place.busAddress)},
                                  Contestant{makeBusCall(shape, processor, "")}};
    for (Contestant& one : all) one.warmUp();
    for (int round = 0; round < kRounds; ++round)
        for (Contestant& one : all) one.round();
    tell(what, all, shape);
}

int runBench(bool onOneProcessor) {
    signal(SIGPIPE, SIG_IGN);
    const int processor = onOneProcessor ? 0 : secondProcessor();
    pin(processor);
    const PrivateBus bus;  // stays on the processor it was started on
    pin(0);
    const TemporaryFolder folder;
    const Place place{processor, folder.path(), bus.address()};
    beginReport(processor == 0 ? "The link: one request and its reply, both sides on one processor"
                               : "The link: the same, each side on its own processor");
    for (const std::size_t size : kSizes)
        compare("small request, reply of " + sizeName(size), {kSmall, size}, place);
    for (const std::size_t size : kSizes)
        if (size > kSmall) compare("both of " + sizeName(size), {size, size}, place);
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
