#include "platform/linux/processes/Confinement.hpp"

#include <fcntl.h>
#include <seccomp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <memory>

#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

using Filter = std::unique_ptr<void, void (*)(scmp_filter_ctx)>;

constexpr std::uint32_t kRefused = SCMP_ACT_ERRNO(EPERM);

// Includes io_uring, because the filter does not see system calls requested through a ring.
constexpr int kUnused[] = {
#ifndef __SANITIZE_ADDRESS__  // its leak check traces its own process
    SCMP_SYS(ptrace),
#endif
    SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev),
    SCMP_SYS(io_uring_setup),   SCMP_SYS(bpf),
    SCMP_SYS(perf_event_open),  SCMP_SYS(userfaultfd),
    SCMP_SYS(add_key),          SCMP_SYS(request_key),
    SCMP_SYS(keyctl),
};

// Forbids all socket families except AF_UNIX and AF_NETLINK, which are both local; the sandboxes of
// a picture loader use them. A rule can test an argument only once, and one rule per family would
// make a long filter. These rules cover the families above AF_NETLINK, and those below it that have
// a different bit set or none.
int forbidNetwork(scmp_filter_ctx filter) {
    constexpr std::uint32_t kHighest = AF_NETLINK;
    constexpr std::uint32_t kOtherBits[] = {2, 4, 8};
    static_assert(AF_UNIX == 1 && AF_NETLINK == 16);
    const auto forbid = [filter](const scmp_arg_cmp& family) {
        return seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(EACCES), SCMP_SYS(socket), 1, &family);
    };
    int status = forbid(SCMP_A0_32(SCMP_CMP_GT, kHighest));
    if (status == 0) status = forbid(SCMP_A0_32(SCMP_CMP_EQ, std::uint32_t{AF_UNSPEC}));
    for (const std::uint32_t bit : kOtherBits)
        if (status == 0) status = forbid(SCMP_A0_32(SCMP_CMP_MASKED_EQ, bit, bit));
    return status;
}

}  // namespace

void forbidCoreDumps() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    // A core handler on a pipe ignores the limit, but an empty filter leaves it no memory.
    const FileDescriptor mask{open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC)};
    if (!mask || write(mask.get(), "0", 1) < 0)
        return;  // the kernel lacks the filter; the limit remains
}

Result<void> confineProcess(Network network) {
    const Filter filter{seccomp_init(SCMP_ACT_ALLOW), seccomp_release};
    if (!filter) return posixError("system-call filter", ENOMEM);
    int status = 0;
    const auto attempt = [&status](int result) {
        if (status == 0) status = result;
    };
    attempt(seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1));
    attempt(seccomp_attr_set(filter.get(), SCMP_FLTATR_ACT_BADARCH, kRefused));
    for (const int call : kUnused) attempt(seccomp_rule_add(filter.get(), kRefused, call, 0));
    if (network == Network::isForbidden) attempt(forbidNetwork(filter.get()));
    attempt(seccomp_load(filter.get()));
    if (status != 0) return posixError("system-call filter", -status);
    return {};
}

Network networkForDisplay(std::string_view display) {
    const bool isLocal = display.starts_with(':') || display.starts_with("unix:");
    return isLocal ? Network::isForbidden : Network::isNeeded;
}

}  // namespace quorvane
