#include "platform/linux/processes/Confinement.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>

#include <fstream>
#include <thread>

#include "tests/support/ForkedChild.hpp"

namespace quorvane {
namespace {

std::string socketResult(int family) {
    const int socket = ::socket(family, SOCK_STREAM, 0);
    const std::string result = socket >= 0 ? "opened" : errno == EACCES ? "refused" : "failed";
    if (socket >= 0) close(socket);
    return result;
}

// Reads its own memory by the system call that reads another process's.
std::string foreignMemoryResult() {
    char from = 'a';
    char to = 'b';
    const iovec local{&to, 1};
    const iovec remote{&from, 1};
    const auto count = process_vm_readv(getpid(), &local, 1, &remote, 1, 0);
    return count == 1 ? "read" : errno == EPERM ? "refused" : "failed";
}

std::string familiesNotRefused() {
    std::string families;
    for (int family = 0; family <= 2 * AF_MAX; ++family)
        if (socketResult(family) != "refused") families += std::to_string(family) + " ";
    return families;
}

// The abilities of a confined process, on this thread and on one that was started before.
std::vector<std::string> abilitiesUnder(Network network) {
    ForkedChild child{[network](const ForkedChild::Say& say) {
        std::string elsewhere;
        std::atomic<bool> isConfined = false;
        std::thread thread{[&] {
            isConfined.wait(false);
            elsewhere = socketResult(AF_INET);
        }};
        const bool worked = confineProcess(network).has_value();
        isConfined = true;
        isConfined.notify_all();
        thread.join();
        say(worked ? "confined" : "not confined");
        say(socketResult(AF_UNIX));
        say(socketResult(AF_INET));
        say(familiesNotRefused());
        say(elsewhere);
        say(foreignMemoryResult());
        return 0;
    }};
    std::vector<std::string> lines;
    for (int i = 0; i < 6; ++i) lines.push_back(child.line());
    EXPECT_EQ(child.wait(), 0);
    return lines;
}

TEST(Confinement, LeavesLocalSocketsAndNoOthersOnEveryThread) {
    EXPECT_EQ(
        abilitiesUnder(Network::isForbidden),
        (std::vector<std::string>{"confined", "opened", "refused", "1 16 ", "refused", "refused"}));
}

TEST(Confinement, LeavesTheNetworkToADisplayElsewhere) {
    for (const char* local : {":0", ":12.0", "unix:0"})
        EXPECT_EQ(networkForDisplay(local), Network::isForbidden) << local;
    for (const char* remote : {"localhost:10.0", "studio:0", ""})
        EXPECT_EQ(networkForDisplay(remote), Network::isNeeded);
    const auto abilities = abilitiesUnder(Network::isNeeded);
    EXPECT_NE(abilities[2], "refused");
    EXPECT_EQ(abilities[5], "refused");
}

TEST(Confinement, LeavesNoCoreBehind) {
    ForkedChild child{[](const ForkedChild::Say& say) -> int {
        forbidCoreDumps();
        rlimit limit{};
        getrlimit(RLIMIT_CORE, &limit);
        say(std::to_string(limit.rlim_cur) + " " + std::to_string(limit.rlim_max));
        std::string mask;
        std::getline(std::ifstream{"/proc/self/coredump_filter"}, mask);
        say(mask);
        abort();
    }};
    EXPECT_EQ(child.line(), "0 0");
    EXPECT_EQ(child.line(), "00000000");
    EXPECT_FALSE(WCOREDUMP(child.wait()));
}

}  // namespace
}  // namespace quorvane
