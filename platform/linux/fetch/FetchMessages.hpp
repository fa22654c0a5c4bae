// The messages between the host and the process that fetches a picture, over their one socket: the
// host sends the URL and ends its side, the process sends a header and its content.
#pragma once

#include <cstdint>

namespace quorvane {

inline constexpr int kFetchSocket = 0;

enum class FetchKind : std::uint32_t { picture, redirect, failure };

struct FetchHeader {
    FetchKind kind;
    std::uint32_t length;  // of the content: a picture, a URL or a sentence
};

}  // namespace quorvane
