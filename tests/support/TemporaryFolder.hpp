// A private folder, deleted together with its object and all its contents.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace quorvane {

// Mode 0700. Its path is short enough for the name of a socket in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = std::filesystem::temp_directory_path() / "quorvane-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) std::abort();
        path_ = pattern;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    // A file in it, overwritten in place.
    std::filesystem::path write(std::string_view name, std::string_view contents) const {
        const auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream{file, std::ios::binary | std::ios::trunc} << contents;
        return file;
    }
    // The file's contents, "" when there is none.
    std::string read(std::string_view name) const {
        std::ifstream stream{path_ / name, std::ios::binary};
        return {std::istreambuf_iterator<char>{stream}, {}};
    }

private:
    std::filesystem::path path_;
};

// The permissions as chmod takes them; for a link, those of its target.
inline int modeOf(const std::filesystem::path& path) {
    return static_cast<int>(std::filesystem::status(path).permissions());
}

}  // namespace quorvane
