// The life of an installed application: login item, files, running copies, launcher.
#pragma once

#include "platform/LivePlatform.hpp"

namespace quorvane {

LoginItemClient makeLoginItemMacOS();
FileManagerClient makeFileManagerMacOS();
// What it tells of the others stands still until the main loop has turned.
RunningApplications makeRunningApplicationsMacOS();
// What the launcher says on standard error, its complaints, is part of its output. The main loop
// may turn before the call returns.
RunOpenCommand makeRunOpenCommandMacOS();

Installation makeInstallationMacOS();

}  // namespace quorvane
