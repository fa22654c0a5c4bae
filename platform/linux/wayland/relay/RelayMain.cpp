// The process that owns the card's Wayland connection. Compositors leave surfaces above the lock
// screen on the desktop after the unlock, so they must end with a process. The add-on is the
// Wayland client; this process passes its bytes on. The add-on kills it at the unlock, and sets the
// timer again as long as it runs and shows a card: a stopped add-on loses its surfaces.
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <utility>

namespace {

// The descriptors that the add-on gives to this process.
constexpr int kAddOn = STDIN_FILENO;
constexpr int kTimer = STDOUT_FILENO;

int connectToCompositor() {
    const auto variable = [](const char* name) -> std::string {
        const char* const value = std::getenv(name);
        return value ? value : "";
    };
    std::string path = variable("WAYLAND_DISPLAY");
    if (!path.starts_with('/')) path = variable("XDG_RUNTIME_DIR") + "/" + path;
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (path.size() >= sizeof address.sun_path) return -1;
    path.copy(address.sun_path, path.size());
    const int compositor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto* const place = reinterpret_cast<const sockaddr*>(&address);
    return connect(compositor, place, sizeof address) == 0 ? compositor : -1;
}

// One direction. It reads again when all of the last bytes are written, so that a slow reader slows
// only its own writer.
class Flow {
public:
    Flow(int from, int to) : from_(from), to_(to) {}
    ~Flow() { closeFiles(); }
    Flow(const Flow&) = delete;
    Flow& operator=(const Flow&) = delete;

    short wantedOfSource() const { return left_.empty() ? POLLIN : 0; }
    short wantedOfTarget() const { return left_.empty() ? 0 : POLLOUT; }
    // `source` and `target` are what is ready. Returns false at the end of the connection.
    bool advance(short source, short target) {
        if (left_.empty()) return (source & POLLIN) == 0 || read();
        return (target & POLLOUT) == 0 || write();
    }

private:
    static constexpr std::size_t kMostFiles = 28;  // that Wayland's libraries send at once

    bool read() {
        iovec part{bytes_.data(), bytes_.size()};
        msghdr packet = messageOf(part, control_.size());
        const ssize_t count = recvmsg(from_, &packet, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
        if (count <= 0) return false;
        left_ = std::span{bytes_}.first(static_cast<std::size_t>(count));
        controlSize_ = packet.msg_controllen;
        return write();
    }
    bool write() {
        iovec part{left_.data(), left_.size()};
        const msghdr packet = messageOf(part, controlSize_);
        const ssize_t count = sendmsg(to_, &packet, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count < 0) return errno == EAGAIN;
        closeFiles();  // they went with the first byte
        left_ = left_.subspan(static_cast<std::size_t>(count));
        return true;
    }
    msghdr messageOf(iovec& part, std::size_t controlSize) {
        msghdr packet{};
        packet.msg_iov = &part;
        packet.msg_iovlen = 1;
        packet.msg_control = controlSize > 0 ? control_.data() : nullptr;
        packet.msg_controllen = controlSize;
        return packet;
    }
    void closeFiles() {
        if (std::exchange(controlSize_, 0) == 0) return;
        cmsghdr header;
        std::memcpy(&header, control_.data(), sizeof header);
        for (std::size_t at = CMSG_LEN(0); at < header.cmsg_len; at += sizeof(int)) {
            int file;
            std::memcpy(&file, control_.data() + at, sizeof file);
            close(file);
        }
    }

    int from_;
    int to_;
    std::array<char, 4096> bytes_;
    std::span<char> left_;
    // At most one control message, with descriptors.
    alignas(cmsghdr) std::array<char, CMSG_SPACE(kMostFiles * sizeof(int))> control_;
    std::size_t controlSize_ = 0;
};

}  // namespace

int main() {
    const int compositor = connectToCompositor();
    if (compositor < 0) return EXIT_FAILURE;
    Flow requests{kAddOn, compositor};
    Flow events{compositor, kAddOn};
    const auto wants = [](const Flow& from, const Flow& to) {
        return static_cast<short>(from.wantedOfSource() | to.wantedOfTarget());
    };
    for (;;) {
        pollfd ends[] = {{kAddOn, wants(requests, events), 0},
                         {compositor, wants(events, requests), 0},
                         {kTimer, POLLIN, 0}};
        if (poll(ends, std::size(ends), -1) < 0) continue;
        const short addOn = ends[0].revents;
        const short server = ends[1].revents;
        const auto hasEnded = [](short ready) {
            return ready != 0 && (ready & (POLLIN | POLLOUT)) == 0;
        };
        if (ends[2].revents != 0 || hasEnded(addOn) || hasEnded(server)) break;
        if (!requests.advance(addOn, server) || !events.advance(server, addOn)) break;
    }
    return EXIT_SUCCESS;
}
