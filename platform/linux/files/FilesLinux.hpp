// Whole files, private folders and random bytes.
#pragma once

#include <filesystem>
#include <string>

#include "platform/FileStore.hpp"

namespace quorvane {

// Any thread.

// Creates the folder and its missing parents with mode 0700.
Result<void> makePrivateFolders(const std::filesystem::path& folder);
// Syncs the folder's entries to disk; before that, a crash can lose the name of a renamed file.
Result<void> syncFolder(const std::filesystem::path& folder);
// Replaces the file atomically, even across a crash of the machine: it has the old or the new
// contents. Mode 0600. The folder must exist.
Result<void> writeFileAtomically(const std::filesystem::path& file, ByteView contents);

// A container is $XDG_DATA_HOME/<group>. It is created with mode 0700, and an existing folder with
// a wider mode is narrowed to that. A symbolic link or a folder of another user is refused, because
// its owner could plant a secret there.
FileStore makeFileStore();
FillRandom makeFillRandom();
// A random UUID, upper-case.
std::string makeRandomUUID();

}  // namespace quorvane
