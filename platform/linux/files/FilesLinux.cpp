#include "platform/linux/files/FilesLinux.hpp"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <systemd/sd-id128.h>
#include <unistd.h>

#include <cctype>

#include "platform/RegularFiles.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/FoldersLinux.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

// Far above the size of any file of the link; protects the memory from a wrong path.
constexpr std::uint64_t kLargestFile = 256 << 20;

std::optional<std::filesystem::path> containerOfGroup(const std::string& group) {
    auto folder = dataFolder();
    if (!folder || !isPlainFileName(group)) return std::nullopt;
    *folder /= group;
    if (!makePrivateFolders(*folder)) return std::nullopt;
    const FileDescriptor descriptor{
        open(folder->c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)};
    struct stat status {};
    if (!descriptor || fstat(descriptor.get(), &status) != 0) return std::nullopt;
    if (status.st_uid != geteuid()) return std::nullopt;
    if ((status.st_mode & 07777) != 0700 && fchmod(descriptor.get(), 0700) != 0)
        return std::nullopt;
    return folder;
}

Result<Bytes> readWhole(const std::filesystem::path& file) {
    static const RegularFiles files = makeLiveRegularFiles();
    auto read = files.read(file, kLargestFile);
    if (!read) return std::unexpected{std::move(read).error()};
    return std::move(read->contents);
}

}  // namespace

Result<void> syncFolder(const std::filesystem::path& folder) {
    const FileDescriptor descriptor{open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
    if (!descriptor) return posixError("open " + folder.string());
    if (fsync(descriptor.get()) != 0) return posixError("fsync " + folder.string());
    return {};
}

Result<void> makePrivateFolders(const std::filesystem::path& folder) {
    if (mkdir(folder.c_str(), 0700) == 0) return {};
    int code = errno;
    if (code == ENOENT && folder.has_relative_path()) {
        if (auto above = makePrivateFolders(folder.parent_path()); !above) return above;
        if (mkdir(folder.c_str(), 0700) == 0) return {};
        code = errno;
    }
    // An existing entry that is not a folder causes an error on its first use.
    if (code == EEXIST) return {};
    return posixError("mkdir " + folder.string(), code);
}

namespace {

Result<void> writeAll(int descriptor, ByteView bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return posixError("write");
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return {};
}

// Writes a temporary file and calls `place` (rename or link) to give it the final name.
Result<void> writeAndPlace(const std::filesystem::path& file, ByteView contents,
                           int (*place)(const char* from, const char* to)) {
    const auto folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path{"."};
    // Hidden, and in the same folder, because both calls work only within one file system.
    std::string temporary = folder / ("." + file.filename().string() + ".XXXXXX");
    const FileDescriptor descriptor{mkostemp(temporary.data(), O_CLOEXEC)};  // mode 0600
    if (!descriptor) return posixError("create " + temporary);
    auto written = writeAll(descriptor.get(), contents);
    if (written && fsync(descriptor.get()) != 0) written = posixError("fsync " + temporary);
    if (written && place(temporary.c_str(), file.c_str()) != 0)
        written = posixError("write " + file.string());
    if (!written || place == link) unlink(temporary.c_str());
    if (!written) return written;
    return syncFolder(folder);
}

Result<void> createFileAtomically(const std::filesystem::path& file, ByteView contents) {
    auto created = writeAndPlace(file, contents, link);
    if (!created && created.error().code == EEXIST) return {};
    return created;
}

}  // namespace

Result<void> writeFileAtomically(const std::filesystem::path& file, ByteView contents) {
    return writeAndPlace(file, contents, rename);
}

FileStore makeFileStore() {
    return {.containerOfGroup = containerOfGroup,
            .read = readWhole,
            .writeAtomically = writeFileAtomically,
            .createAtomically = createFileAtomically};
}

FillRandom makeFillRandom() {
    return [](std::span<std::byte> bytes) -> std::expected<void, int> {
        while (!bytes.empty()) {
            const ssize_t filled = getrandom(bytes.data(), bytes.size(), 0);
            if (filled < 0 && errno == EINTR) continue;
            if (filled < 0) return std::unexpected{errno};
            bytes = bytes.subspan(static_cast<std::size_t>(filled));
        }
        return {};
    };
}

std::string makeRandomUUID() {
    sd_id128_t identifier{};
    sd_id128_randomize(&identifier);  // also sets the version and variant bits
    char text[SD_ID128_UUID_STRING_MAX];
    sd_id128_to_uuid_string(identifier, text);
    std::string upper{text};
    for (char& c : upper) c = static_cast<char>(std::toupper(c));
    return upper;
}

}  // namespace quorvane
