// Tables of an installed application: login item, files, running copies, launcher.
#pragma once

#include "platform/LivePlatform.hpp"

namespace quorvane {

LoginItemClient makeLoginItemMacOS();
FileManagerClient makeFileManagerMacOS();
// Information about other applications changes only when the main loop runs.
RunningApplications makeRunningApplicationsMacOS();
// The output includes the launcher's standard error, which holds its error messages. The main loop
// may run before the call returns.
OpenApplication makeOpenApplicationMacOS();

Installation makeInstallationMacOS();

}  // namespace quorvane
