#include "host/players/ArtworkFetcher.hpp"

#include <algorithm>

namespace quorvane {

namespace {

constexpr int kMostRedirects = 3;
// Enough for the covers of an evening; the last one is kept however large it is.
constexpr std::size_t kMostKeptBytes = 4u << 20;

}  // namespace

bool isWebURL(std::string_view url) {
    return url.starts_with("https://") || url.starts_with("http://");
}

void ArtworkFetcher::fetch(const std::string& url, std::function<void(Result)> done) {
    request_.reset();
    const auto kept = std::ranges::find(kept_, url, &decltype(kept_)::value_type::first);
    if (kept != kept_.end()) {
        kept_.splice(kept_.begin(), kept_, kept);
        return done(kept->second);
    }
    url_ = url;
    done_ = std::move(done);
    request(url, 0);
}

void ArtworkFetcher::request(const std::string& url, int redirects) {
    const auto refuse = [this](const char* reason) { done_(std::unexpected{reason}); };
    if (!fetchPicture_) return refuse("this edition fetches no pictures");
    if (url.size() > kLongestFetchURL) return refuse("the picture's URL is too long");
    if (!isWebURL(url)) return refuse("the server redirects to another protocol");
    if (redirects > kMostRedirects) return refuse("the server redirects too often");
    request_ = fetchPicture_(
        url, [this, redirects](FetchAnswer answer) { answered(std::move(answer), redirects); });
}

void ArtworkFetcher::answered(FetchAnswer answer, int redirects) {
    request_.reset();
    if (const auto* elsewhere = std::get_if<FetchRedirect>(&answer))
        return request(elsewhere->url, redirects + 1);
    if (const auto* failure = std::get_if<FetchFailure>(&answer))
        return done_(std::unexpected{failure->sentence});
    keep(SharedBytes{std::get<Bytes>(std::move(answer))});
    done_(kept_.front().second);
}

void ArtworkFetcher::keep(SharedBytes picture) {
    kept_.emplace_front(url_, std::move(picture));
    std::size_t bytes = 0;
    const auto tooMany = std::ranges::find_if(
        kept_, [&](const auto& entry) { return (bytes += entry.second.size()) > kMostKeptBytes; });
    if (tooMany != kept_.end())
        kept_.erase(tooMany == kept_.begin() ? std::next(tooMany) : tooMany, kept_.end());
}

}  // namespace quorvane
