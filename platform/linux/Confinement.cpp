#include "platform/linux/Confinement.hpp"

#include <fcntl.h>
#include <seccomp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/linux/FileDescriptor.hpp"
#include "platform/linux/PosixError.hpp"

namespace quorvane {
namespace {

using Filter = std::unique_ptr<void, void (*)(scmp_filter_ctx)>;

constexpr std::uint32_t kRefused = SCMP_ACT_ERRNO(EPERM);

// Rings among them: what is asked for through one passes by the filter.
constexpr int kUnused[] = {
#ifndef __SANITIZE_ADDRESS__  // looks for leaks by tracing its own process
    SCMP_SYS(ptrace),
#endif
    SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev),
    SCMP_SYS(io_uring_setup),   SCMP_SYS(bpf),
    SCMP_SYS(perf_event_open),  SCMP_SYS(userfaultfd),
    SCMP_SYS(add_key),          SCMP_SYS(request_key),
    SCMP_SYS(keyctl),
};

// The kernel's own messages are local too; sandboxes that a picture loader starts use them. A rule
// looks at an argument once, hence one a family.
int forbidNetwork(scmp_filter_ctx filter) {
    int status = 0;
    for (int family = 0; family < AF_MAX && status == 0; ++family) {
        if (family == AF_UNIX || family == AF_NETLINK) continue;
        status = seccomp_rule_add(filter, SCMP_ACT_ERRNO(EACCES), SCMP_SYS(socket), 1,
                                  SCMP_A0_32(SCMP_CMP_EQ, static_cast<std::uint32_t>(family)));
    }
    return status;
}

}  // namespace

void forbidCoreDumps() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    // A program that takes cores over a pipe is not bound by the limit, but gets no memory.
    const FileDescriptor mask{open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC)};
    if (!mask || write(mask.get(), "0", 1) < 0)
        return;  // built without it: then there is the limit
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

Network networkForDisplay(const char* display) {
    const std::string_view name = display ? display : "";
    const bool isLocal = name.starts_with(':') || name.starts_with("unix:");
    return isLocal ? Network::isForbidden : Network::isNeeded;
}

}  // namespace quorvane
