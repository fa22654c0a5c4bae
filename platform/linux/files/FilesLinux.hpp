// Whole files, private folders and random bytes.
#pragma once

#include <filesystem>
#include <string>

#include "platform/FileStore.hpp"

namespace quorvane {

// Any thread.

// Makes what is missing of the folder and of those above it, with mode 0700.
Result<void> makePrivateFolders(const std::filesystem::path& folder);
Result<void> writeAll(int descriptor, ByteView bytes);
// Writes the folder's names to the disk: a renamed file's is itself lost in a crash until then.
Result<void> syncFolder(const std::filesystem::path& folder);
// Old or new contents stand there at any moment, also after a crash of the machine. Mode 0600. The
// folder must be there.
Result<void> writeFileAtomically(const std::filesystem::path& file, ByteView contents);

// A container is $XDG_DATA_HOME/<group>. It is made with mode 0700, and narrowed to that if it
// stands with more. One that is a symbolic link or another user's is refused: whoever owns it could
// put a secret of their own there.
FileStore makeFileStore();
FillRandom makeFillRandom();
// A random UUID, upper-case.
std::string makeRandomUUID();

}  // namespace quorvane
