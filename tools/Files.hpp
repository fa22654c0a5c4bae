// Reads and writes whole files. An error is a sentence that names the file.
#pragma once

#include <expected>
#include <fstream>
#include <sstream>
#include <string>

#include "platform/Bytes.hpp"

namespace quorvane {

inline std::expected<Bytes, std::string> readFile(const std::string& path) {
    std::ifstream file{path, std::ios::binary};
    if (!file.is_open()) return std::unexpected{path + ": cannot be read"};
    std::ostringstream text;
    // Opening a folder succeeds; reading from it fails.
    if (!(text << file.rdbuf()) && file.peek() != std::ifstream::traits_type::eof())
        return std::unexpected{path + ": cannot be read"};
    return copyOf(bytesOf(text.str()));
}

inline std::expected<void, std::string> writeFile(const std::string& path, ByteView bytes) {
    std::ofstream file{path, std::ios::binary};
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) return std::unexpected{path + ": cannot be written"};
    return {};
}

}  // namespace quorvane
