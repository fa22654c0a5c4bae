// A way to carry a request and its reply between two processes.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace quorvane {

// The contents of a call: a framed request and a reply of these lengths.
struct LinkShape {
    std::size_t request;
    std::size_t reply;
};

// Starts its serving process. A failed call ends the program.
class LinkRival {
public:
    virtual ~LinkRival() = default;
    virtual void call() = 0;
};

// A blocking Unix stream whose two sides know every length beforehand and reuse their buffers: the
// floor.
std::unique_ptr<LinkRival> makeBareStream(LinkShape shape, int processor);
// A call over a message port: framing with the secret, both time limits, the secret's check, a
// fresh buffer for the reply.
std::unique_ptr<LinkRival> makePortCall(LinkShape shape, int processor,
                                        const std::filesystem::path& folder);
// A method call with an array of bytes: through the bus at `address`, or between the two processes
// alone when it is empty.
std::unique_ptr<LinkRival> makeBusCall(LinkShape shape, int processor, const std::string& address);

}  // namespace quorvane
