// The files of an add-on's bundle, copied and replaced as a whole.
#include "platform/BundleFiles.hpp"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/FileManagerLinux.hpp"
#include "platform/linux/files/FilesLinux.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

using std::filesystem::path;

constexpr char kHiddenPrefix[] = ".staged-";
constexpr int kDeepestFolder = 64;

Result<void> copyFile(int from, const path& to, mode_t mode) {
    const FileDescriptor target{
        open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode & 0777)};
    if (!target) return posixError(to);
    constexpr std::size_t kStep = 1 << 20;
    while (const ssize_t count = sendfile(target.get(), from, nullptr, kStep))
        if (count < 0 && errno != EINTR) return posixError(to);
    if (fsync(target.get()) != 0) return posixError(to);
    return {};
}

Result<void> copyItem(const path& from, const path& to, int depth);

Result<void> copyFolder(const path& from, const path& to, int depth) {
    if (depth > kDeepestFolder) return posixError(from, ELOOP);
    if (mkdir(to.c_str(), 0755) != 0) return posixError(to);
    std::error_code error;
    for (std::filesystem::directory_iterator place{from, error}, end; !error && place != end;
         place.increment(error)) {
        const path name = place->path().filename();
        if (auto copied = copyItem(from / name, to / name, depth + 1); !copied) return copied;
    }
    if (error) return posixError(from, error.value());
    return syncFolder(to);
}

// A bundle contains only files and folders; a link could lead outside the checked bundle.
Result<void> copyItem(const path& from, const path& to, int depth) {
    const FileDescriptor source{
        open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)};
    struct stat status {};
    if (!source || fstat(source.get(), &status) != 0) return posixError(from);
    if (S_ISDIR(status.st_mode)) return copyFolder(from, to, depth);
    if (S_ISREG(status.st_mode)) return copyFile(source.get(), to, status.st_mode);
    return std::unexpected{
        PlatformError{.code = EINVAL, .description = from.string() + ": neither file nor folder"}};
}

Result<path> stage(const path& bundle, const path& folder) {
    if (auto made = makePrivateFolders(folder); !made) return std::unexpected{made.error()};
    std::string hidden = folder / (std::string{kHiddenPrefix} + "XXXXXX");
    if (mkdtemp(hidden.data()) == nullptr) return posixError(folder);
    const path copy = path{hidden} / bundle.filename();
    auto copied = copyItem(bundle, copy, 0);
    if (copied) copied = syncFolder(hidden);
    if (copied) return copy;
    static_cast<void>(makeFileManager().removeItem(hidden));
    rmdir(folder.c_str());  // fails, as intended, when the folder is not empty
    return std::unexpected{std::move(copied).error()};
}

Result<void> putInPlace(const path& staged, const path& place) {
    const auto rename = [&](unsigned how) {
        return renameat2(AT_FDCWD, staged.c_str(), AT_FDCWD, place.c_str(), how) == 0;
    };
    if (!rename(RENAME_EXCHANGE) && (errno != ENOENT || !rename(RENAME_NOREPLACE)))
        return posixError(place);
    return syncFolder(place.parent_path());
}

void discardStaged(const path& folder) {
    std::error_code error;
    for (std::filesystem::directory_iterator place{folder, error}, end; !error && place != end;
         place.increment(error))
        if (place->path().filename().string().starts_with(kHiddenPrefix))
            static_cast<void>(makeFileManager().removeItem(place->path()));
}

}  // namespace

BundleFiles makeLiveBundleFiles() {
    return {.properties = propertiesOfBundle,
            .stage = stage,
            .putInPlace = putInPlace,
            .discardStaged = discardStaged};
}

}  // namespace quorvane
