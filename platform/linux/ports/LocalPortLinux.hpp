// Serving end of a port: one loop over the listening socket and its clients.
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "platform/MessagePort.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/ports/PortConnection.hpp"
#include "platform/linux/ports/PortFolder.hpp"

struct epoll_event;

namespace quorvane {

// Owns its name for its lifetime. A slow client delays only itself.
class LocalPortLinux final : public LocalPort {
public:
    // Returns null when the name is taken or the folder is unsuitable.
    static std::unique_ptr<LocalPort> open(PortFolder folder, const std::string& name,
                                           PortHandler handler, const PortLimits& limits);
    ~LocalPortLinux() override;

    void run() override;
    void stop() override;

private:
    LocalPortLinux(PortFolder folder, std::string name, FileLock lock, PortHandler handler,
                   const PortLimits& limits);

    bool listen();
    bool watch(int descriptor, std::uint32_t events, void* tag, int operation);
    int wait(std::span<epoll_event> events, std::optional<Instant> deadline) const;
    void acceptWaiting();
    void pauseListening();
    void add(FileDescriptor socket, pid_t peer);
    void serve(PortConnection& connection);
    void drop(PortConnection& connection);
    void unwatch(const PortConnection& connection);
    void dropFromGreediest();
    std::optional<Instant> nextDeadline() const;
    void expire(Instant present);

    const PortFolder folder_;
    const std::string name_;
    const FileLock lock_;
    const PortHandler handler_;
    const PortLimits limits_;
    FileDescriptor listener_;
    FileDescriptor epoll_;
    FileDescriptor wake_;
    std::atomic<bool> isStopped_ = false;

    PortMemory memory_;  // before the connections, which return memory to it
    std::vector<std::unique_ptr<PortConnection>> connections_;
    std::uint64_t uses_ = 0;
    std::optional<Instant> listensAgain_;  // set while accepting is paused
};

}  // namespace quorvane
