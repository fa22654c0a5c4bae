#include "platform/linux/fetch/download/InternetOnly.hpp"

#include <seccomp.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <memory>

#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

// The system calls of the C, TLS and web libraries during a transfer, in the versions of several
// years. Any other call fails, and the libraries handle the error.
constexpr int kOfATransfer[] = {
    SCMP_SYS(read),          SCMP_SYS(write),
    SCMP_SYS(readv),         SCMP_SYS(writev),
    SCMP_SYS(recvfrom),      SCMP_SYS(recvmsg),
    SCMP_SYS(sendto),        SCMP_SYS(sendmsg),
    SCMP_SYS(connect),       SCMP_SYS(shutdown),
    SCMP_SYS(close),         SCMP_SYS(poll),
    SCMP_SYS(ppoll),         SCMP_SYS(getsockopt),
    SCMP_SYS(setsockopt),    SCMP_SYS(getsockname),
    SCMP_SYS(getpeername),   SCMP_SYS(fcntl),
    SCMP_SYS(mmap),          SCMP_SYS(munmap),
    SCMP_SYS(mremap),        SCMP_SYS(mprotect),
    SCMP_SYS(madvise),       SCMP_SYS(brk),
    SCMP_SYS(futex),         SCMP_SYS(getrandom),
    SCMP_SYS(clock_gettime), SCMP_SYS(gettimeofday),
    SCMP_SYS(getpid),        SCMP_SYS(gettid),
    SCMP_SYS(rt_sigaction),  SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(rt_sigreturn),  SCMP_SYS(restart_syscall),
    SCMP_SYS(exit),          SCMP_SYS(exit_group),
};

}  // namespace

Result<void> confineToInternet() {
    const std::unique_ptr<void, void (*)(scmp_filter_ctx)> filter{
        seccomp_init(SCMP_ACT_ERRNO(EPERM)), seccomp_release};
    int status = filter ? 0 : -ENOMEM;
    const auto allow = [&](int call, auto... conditions) {
        if (status == 0)
            status = seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, sizeof...(conditions),
                                      conditions...);
    };
    for (const int call : kOfATransfer) allow(call);
    for (const std::uint32_t family : {AF_INET, AF_INET6})
        allow(SCMP_SYS(socket), SCMP_A0_32(SCMP_CMP_EQ, family));
    if (status == 0) status = seccomp_load(filter.get());
    if (status != 0) return posixError("system-call filter", -status);
    return {};
}

}  // namespace quorvane
