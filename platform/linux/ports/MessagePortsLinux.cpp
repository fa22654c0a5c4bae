#include "platform/linux/ports/MessagePortsLinux.hpp"

#include <unistd.h>

#include "platform/linux/files/Environment.hpp"
#include "platform/linux/ports/LocalPortLinux.hpp"
#include "platform/linux/ports/PortFolder.hpp"
#include "platform/linux/ports/RemotePortLinux.hpp"

namespace quorvane {

std::filesystem::path portFolderOfUser() {
    std::filesystem::path runtime{environmentVariable("XDG_RUNTIME_DIR")};
    if (!runtime.is_absolute()) runtime = "/run/user/" + std::to_string(geteuid());
    return runtime / "example.quillon.Quorvane";
}

ConnectPort makeConnectPortLinux(std::filesystem::path path) {
    return [path = std::move(path)](const std::string& name) -> std::unique_ptr<RemotePort> {
        const auto folder = PortFolder::open(path, PortFolder::Purpose::look);
        return folder ? RemotePortLinux::connect(*folder, name) : nullptr;
    };
}

OpenPort makeOpenPortLinux(std::filesystem::path path, PortLimits limits) {
    return [path = std::move(path), limits](const std::string& name,
                                            PortHandler handler) -> std::unique_ptr<LocalPort> {
        auto folder = PortFolder::open(path, PortFolder::Purpose::serve);
        if (!folder) return nullptr;
        return LocalPortLinux::open(*std::move(folder), name, std::move(handler), limits);
    };
}

}  // namespace quorvane
