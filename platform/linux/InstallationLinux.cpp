#include "platform/linux/InstallationLinux.hpp"

#include "platform/linux/FileManagerLinux.hpp"
#include "platform/linux/FoldersLinux.hpp"
#include "platform/linux/LoginItemLinux.hpp"
#include "platform/linux/OpenCommandLinux.hpp"
#include "platform/linux/RunningApplicationsLinux.hpp"

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
