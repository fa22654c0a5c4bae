#include "platform/linux/processes/ProcessInfoLinux.hpp"

#include <unistd.h>

#include "platform/linux/files/BundleLayout.hpp"

namespace quorvane {
namespace {

// The core uses the system's version, in the numbers of the other edition, to decide whether the
// lock screen can show the card. This edition reports the first version that supports it; the
// kernel's own version would disable the card.
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
