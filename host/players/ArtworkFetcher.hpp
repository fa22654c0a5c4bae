// Pictures from web servers: one request at a time, and the newest pictures at hand.
#pragma once

#include <expected>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <utility>

#include "QuorvaneKit/records/SharedBytes.hpp"
#include "platform/FetchPicture.hpp"

namespace quorvane {

// Whether the URL names something on a web server.
bool isWebURL(std::string_view url);

// Main thread only.
class ArtworkFetcher {
public:
    using Result = std::expected<SharedBytes, std::string>;  // or the reason, a sentence

    explicit ArtworkFetcher(FetchPicture fetchPicture) : fetchPicture_(std::move(fetchPicture)) {}

    // Calls `done` once, at once if the picture is at hand, unless `cancel` or `fetch` is called
    // before.
    void fetch(const std::string& url, std::function<void(Result)> done);
    void cancel() { request_.reset(); }
    bool isFetching() const { return static_cast<bool>(request_); }

private:
    void request(const std::string& url, int redirects);
    void answered(FetchAnswer answer, int redirects);
    void keep(SharedBytes picture);

    FetchPicture fetchPicture_;
    std::string url_;  // of the present request, before any redirect
    std::function<void(Result)> done_;
    std::list<std::pair<std::string, SharedBytes>> kept_;  // most recently wanted first
    Handle request_;
};

}  // namespace quorvane
