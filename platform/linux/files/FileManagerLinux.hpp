// Removal of files and folders, and who a bundle says it is.
#pragma once

#include "platform/FileManagerClient.hpp"

namespace quorvane {

// Removing stops at the first thing that refuses; what was removed before stays so.
FileManagerClient makeFileManager();

}  // namespace quorvane
