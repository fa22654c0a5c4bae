// The fetching of a picture from a web server.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <variant>

#include "platform/Bytes.hpp"
#include "platform/Handle.hpp"

namespace quorvane {

struct LiveServices;

// The size limit of an encoded picture from any source.
inline constexpr std::uint64_t kLargestArtwork = 8u << 20;
inline constexpr std::size_t kLongestFetchURL = 4096;

struct FetchRedirect {
    std::string url;  // absolute
};
struct FetchFailure {
    std::string sentence;
};
using FetchAnswer = std::variant<Bytes, FetchRedirect, FetchFailure>;

// Main thread only. Sends one request to the server of an "http:" or "https:" URL of at most
// kLongestFetchURL bytes, in a process that can do nothing else, and calls `done` once, later. The
// picture has at most kLargestArtwork bytes and begins like one. Dropping the handle ends the
// process; `done` may drop it.
using FetchPicture =
    std::function<Handle(const std::string& url, std::function<void(FetchAnswer)> done)>;

// `program` is the executable of that process. `services` must outlive the function.
FetchPicture makeLiveFetchPicture(const LiveServices& services, std::filesystem::path program);

}  // namespace quorvane
