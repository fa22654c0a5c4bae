// Removal of files and folders, and bundle identifiers.
#pragma once

#include "platform/FileManagerClient.hpp"

namespace quorvane {

// Removal stops at the first item that fails; items removed before that stay removed.
FileManagerClient makeFileManager();

}  // namespace quorvane
