// The one request of the process that fetches a picture.
#pragma once

#include <cstdint>
#include <span>

namespace quorvane {

struct DownloadRules {
    // Whether a connection to the IPv4 or IPv6 address may be made.
    bool (*mayConnect)(std::span<const std::uint8_t> address);
    // The certificates that servers are checked against; null for the system's.
    const char* certificates = nullptr;
    unsigned seconds = 10;  // until the process is killed
};

// Reads a URL from kFetchSocket, gives up everything but the network, sends the request, and writes
// the answer. Returns the exit status.
int downloadPicture(const DownloadRules& rules);

}  // namespace quorvane
