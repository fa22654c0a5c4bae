// Files in memory, for readers of files that other programs name.
#pragma once

#include <map>
#include <string>

#include "platform/RegularFiles.hpp"

namespace quorvane {

class MemoryFiles {
public:
    int reads = 0;

    void put(const std::filesystem::path& path, std::string_view contents) {
        files_[path] = {FileStamp{.file = ++writes_, .size = contents.size()},
                        copyOf(bytesOf(contents))};
    }
    void remove(const std::filesystem::path& path) { files_.erase(path); }

    RegularFiles table() {
        return {.stamp = [this](const std::filesystem::path& path) -> Result<FileStamp> {
                    if (!files_.contains(path)) return failure(path, "No such file or directory");
                    return files_[path].stamp;
                },
                .read = [this](const std::filesystem::path& path,
                               std::uint64_t limit) -> Result<StampedFile> {
                    ++reads;
                    if (!files_.contains(path)) return failure(path, "No such file or directory");
                    if (files_[path].contents.size() > limit)
                        return failure(path, "File too large");
                    return files_[path];
                }};
    }

private:
    static std::unexpected<PlatformError> failure(const std::filesystem::path& path,
                                                  const std::string& reason) {
        return std::unexpected{
            PlatformError{.code = 1, .description = path.string() + ": " + reason}};
    }

    std::map<std::filesystem::path, StampedFile> files_;
    std::uint64_t writes_ = 0;
};

}  // namespace quorvane
