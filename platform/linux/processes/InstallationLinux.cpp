#include "platform/linux/processes/InstallationLinux.hpp"

#include "platform/linux/files/FileManagerLinux.hpp"
#include "platform/linux/files/FoldersLinux.hpp"
#include "platform/linux/processes/LoginItemLinux.hpp"
#include "platform/linux/processes/OpenCommandLinux.hpp"
#include "platform/linux/processes/RunningApplicationsLinux.hpp"

namespace quorvane {

Installation makeInstallation(const ProcessInfo& process) {
    auto autostart = configFolder();
    if (autostart) *autostart /= "autostart";
    return {.loginItem = makeLoginItem(autostart, process),
            .fileManager = makeFileManager(),
            .runningApplications = makeRunningApplications(),
            .runOpenCommand = makeRunOpenCommand(),
            .applicationSupport = dataFolder()};
}

}  // namespace quorvane
