#include "platform/linux/fetch/download/PictureDownload.hpp"

#include <curl/curl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include "drawing/pictures/EncodedImage.hpp"
#include "platform/FetchPicture.hpp"
#include "platform/linux/fetch/FetchMessages.hpp"
#include "platform/linux/fetch/download/InternetOnly.hpp"

namespace quorvane {
namespace {

constexpr char kProtocols[] = "http,https";

using Transfer = std::unique_ptr<CURL, void (*)(CURL*)>;
using Names = std::unique_ptr<curl_slist, void (*)(curl_slist*)>;

struct Session {
    const DownloadRules& rules;
    Bytes body{};
    std::uint64_t received = 0;  // headers included
    bool isRefused = false;      // the server's address
};

std::optional<std::string> readURL() {
    std::string url(kLongestFetchURL + 1, '\0');
    std::size_t length = 0;
    while (length < url.size()) {
        const ssize_t count = read(kFetchSocket, url.data() + length, url.size() - length);
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    if (length > kLongestFetchURL) return std::nullopt;
    url.resize(length);
    return url;
}

void write(ByteView bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(kFetchSocket, bytes.data(), bytes.size());
        if (count < 0) return;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void answer(FetchKind kind, ByteView content) {
    const FetchHeader header{kind, static_cast<std::uint32_t>(content.size())};
    write(std::as_bytes(std::span{&header, 1}));
    write(content);
}

// The transfer ends with an error when these callbacks return less than they received.
std::size_t count(const char*, std::size_t size, std::size_t number, void* data) {
    auto& received = static_cast<Session*>(data)->received;
    received += size * number;
    return received <= kLargestArtwork ? size * number : 0;
}
std::size_t keep(const char* bytes, std::size_t size, std::size_t number, void* data) {
    if (count(bytes, size, number, data) != size * number) return 0;
    append(static_cast<Session*>(data)->body, bytesOf({bytes, size * number}));
    return size * number;
}

// Every connection goes through here, with the address that it is made to.
curl_socket_t openSocket(void* data, curlsocktype, curl_sockaddr* target) {
    auto& session = *static_cast<Session*>(data);
    std::span<const std::uint8_t> address;
    if (target->family == AF_INET) {
        const auto* const v4 = reinterpret_cast<const sockaddr_in*>(&target->addr);
        address = {reinterpret_cast<const std::uint8_t*>(&v4->sin_addr), sizeof v4->sin_addr};
    } else if (target->family == AF_INET6) {
        const auto* const v6 = reinterpret_cast<const sockaddr_in6*>(&target->addr);
        address = {reinterpret_cast<const std::uint8_t*>(&v6->sin6_addr), sizeof v6->sin6_addr};
    }
    session.isRefused = !session.rules.mayConnect(address);
    if (session.isRefused) return CURL_SOCKET_BAD;
    return socket(target->family, target->socktype | SOCK_CLOEXEC, target->protocol);
}

// The URL's host with its addresses, in the library's form. Resolved before the process is
// confined, because the system's resolver reads files and loads libraries.
std::optional<std::string> resolvedHost(const std::string& url) {
    const std::unique_ptr<CURLU, void (*)(CURLU*)> parts{curl_url(), curl_url_cleanup};
    char *host = nullptr, *port = nullptr;
    if (curl_url_set(parts.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK ||
        curl_url_get(parts.get(), CURLUPART_HOST, &host, 0) != CURLUE_OK ||
        curl_url_get(parts.get(), CURLUPART_PORT, &port, CURLU_DEFAULT_PORT) != CURLUE_OK)
        return std::nullopt;
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (*host == '[') return "";  // an IPv6 address needs none
    if (getaddrinfo(host, port, &wanted, &found) != 0) return std::nullopt;
    std::string line = std::string{host} + ':' + port;
    char separator = ':';
    for (const addrinfo* entry = found; entry; entry = entry->ai_next) {
        char number[NI_MAXHOST];
        if (getnameinfo(entry->ai_addr, entry->ai_addrlen, number, sizeof number, nullptr, 0,
                        NI_NUMERICHOST) != 0)
            continue;
        line += std::exchange(separator, ',');
        line += entry->ai_family == AF_INET6 ? '[' + std::string{number} + ']' : number;
    }
    return line;
}

// Does everything that needs files; afterwards the transfer needs only the network.
bool prepare(CURL* transfer, Session& session) {
    const char* const named = session.rules.certificates;
    const char* const path = named ? named : curl_version_info(CURLVERSION_NOW)->cainfo;
    std::ifstream file{path ? path : ""};
    std::string certificates{std::istreambuf_iterator<char>{file}, {}};
    curl_blob blob{certificates.data(), certificates.size(), CURL_BLOB_COPY};
    const auto set = [transfer](CURLoption option, auto value) {
        return curl_easy_setopt(transfer, option, value) == CURLE_OK;
    };
    return !certificates.empty() && set(CURLOPT_CAINFO_BLOB, &blob) &&
           set(CURLOPT_PROTOCOLS_STR, kProtocols) && set(CURLOPT_PROXY, "") &&
           set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L) &&
           set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1}) &&
           set(CURLOPT_USERAGENT, "quorvane-lock-screen") && set(CURLOPT_NOSIGNAL, 1L) &&
           set(CURLOPT_OPENSOCKETFUNCTION, &openSocket) && set(CURLOPT_OPENSOCKETDATA, &session) &&
           set(CURLOPT_HEADERFUNCTION, &count) && set(CURLOPT_HEADERDATA, &session) &&
           set(CURLOPT_WRITEFUNCTION, &keep) && set(CURLOPT_WRITEDATA, &session);
}

void fail(const std::string& sentence) { answer(FetchKind::failure, bytesOf(sentence)); }

void transferAndAnswer(CURL* transfer, const Session& session) {
    const CURLcode result = curl_easy_perform(transfer);
    if (session.received > kLargestArtwork) return fail("the server sends more than 8 MiB");
    if (result != CURLE_OK)
        return fail(session.isRefused ? "the server is not on the public Internet"
                                      : curl_easy_strerror(result));
    char* elsewhere = nullptr;
    curl_easy_getinfo(transfer, CURLINFO_REDIRECT_URL, &elsewhere);
    if (elsewhere) return answer(FetchKind::redirect, bytesOf(elsewhere));
    long status = 0;
    curl_easy_getinfo(transfer, CURLINFO_RESPONSE_CODE, &status);
    if (status != 200) return fail("the server answers with status " + std::to_string(status));
    if (!pictureType(session.body)) return fail("the server's reply is not a picture");
    answer(FetchKind::picture, session.body);
}

}  // namespace

int downloadPicture(const DownloadRules& rules) {
    alarm(rules.seconds);
    const auto url = readURL();
    if (!url || curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) return 1;
    const Transfer transfer{curl_easy_init(), curl_easy_cleanup};
    Session session{rules};
    session.body.reserve(kLargestArtwork);
    if (!transfer || !prepare(transfer.get(), session)) {
        fail("the web library or its certificates are not usable");
        return 1;
    }
    const auto host = resolvedHost(*url);
    if (!host) {
        fail("the server's address was not found");
        return 1;
    }
    const Names names{host->empty() ? nullptr : curl_slist_append(nullptr, host->c_str()),
                      curl_slist_free_all};
    curl_easy_setopt(transfer.get(), CURLOPT_RESOLVE, names.get());
    curl_easy_setopt(transfer.get(), CURLOPT_URL, url->c_str());
    if (const auto confined = confineToInternet(); !confined) {
        fail(confined.error().description);
        return 1;
    }
    transferAndAnswer(transfer.get(), session);
    _exit(0);  // without the library's cleanup, which may need forbidden calls
}

}  // namespace quorvane
