// One way to carry a request and its reply between two processes.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/Bytes.hpp"

namespace quorvane {

// What a call carries: a framed request and a reply of these lengths.
struct LinkShape {
    std::size_t request;
    std::size_t reply;
};

// Makes its serving process with itself. A call that fails ends the program.
class LinkRival {
public:
    virtual ~LinkRival() = default;
    virtual void call() = 0;
};

// A bare blocking Unix stream: both sides know every length beforehand and reuse their buffers.
std::unique_ptr<LinkRival> makeBareStream(LinkShape shape, int processor);
// A call over a message port: framing with the secret, both time limits, the secret's check, a
// fresh buffer for the reply.
std::unique_ptr<LinkRival> makePortCall(LinkShape shape, int processor,
                                        const std::filesystem::path& folder);
// A method call with an array of bytes, through the bus at an address, or without one between the
// two processes alone.
std::unique_ptr<LinkRival> makeBusCall(LinkShape shape, int processor, const std::string& address);
// The same with contents. What `makeReply` returns is of its own and stays until the next call.
struct BusContents {
    Bytes request;
    std::function<ByteView()> makeReply;  // in the serving process
    std::function<void(ByteView)> take;
};
std::unique_ptr<LinkRival> makeBusCall(BusContents contents, int processor,
                                       const std::string& address);
// Null where the package was not there when this was built.
std::unique_ptr<LinkRival> makeZeroMQCall(LinkShape shape, int processor,
                                          const std::filesystem::path& folder);

}  // namespace quorvane
