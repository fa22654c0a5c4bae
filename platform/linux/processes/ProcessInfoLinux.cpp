#include "platform/linux/processes/ProcessInfoLinux.hpp"

#include <unistd.h>

#include "platform/linux/files/BundleLayout.hpp"

namespace quorvane {
namespace {

// What the core asks of the system's version is whether the card can stand on its lock screen, and
// it asks in the numbers of the other edition. This edition stands in for its first supported
// version; the kernel's own number would switch the card off.
constexpr SystemVersion kInterfaceVersion{26, 0, 0};

}  // namespace

ProcessInfo makeProcessInfo(int argumentCount, char** arguments) {
    std::error_code none;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", none);
    ProcessInfo info{.arguments = {arguments, arguments + argumentCount},
                     .executable = executable,
                     .pid = getpid(),
                     .systemVersion = kInterfaceVersion,
                     .bundle = bundleOfExecutable(executable),
                     .bundleProperties = {}};
    info.bundleProperties = propertiesOfBundle(info.bundle);
    return info;
}

}  // namespace quorvane
