// The screen-saver service for a locker without one.
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <utility>

#include "platform/LockerRun.hpp"
#include "platform/linux/bus/ScreenSaverService.hpp"
#include "platform/linux/bus/ScreenSaverSignals.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/processes/SpawnSettings.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"

namespace quorvane {
namespace {

constexpr int kReadyDescriptor = 3;
constexpr Duration kLongestStart = std::chrono::seconds{2};

class LockerRun {
public:
    LockerRun(const LiveServices& services, std::function<void(int)> ended)
        : platform_(HeadlessPlatform::of(services)),
          clock_(services.clock),
          ended_(std::move(ended)),
          service_(platform_.sessionBus, kLockerRunService) {}

    Result<void> start(std::vector<std::string> command) {
        if (auto served = serve(); !served) return served;
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) return posixError("pipe");
        ready_ = FileDescriptor{ends[0]};
        // Another number than the command's, because a copy to the same one would close on exec.
        const FileDescriptor others{fcntl(ends[1], F_DUPFD_CLOEXEC, kReadyDescriptor + 1)};
        close(ends[1]);
        if (auto started = spawn(std::move(command), others.get()); !started) return started;
        end_ = platform_.loop.watch(process_.get(), EPOLLIN, [this](std::uint32_t) { end(); });
        readiness_ = platform_.loop.watch(ready_.get(), EPOLLIN, [this](std::uint32_t events) {
            if ((events & EPOLLIN) != 0) set(true);
            readiness_.reset();
        });
        patience_ = clock_.after(kLongestStart, [this] { set(true); });
        return {};
    }

private:
    Result<void> serve() {
        const int result = service_.start();
        if (result == -ENOTCONN)
            return std::unexpected{PlatformError{.description = "there is no session bus"}};
        if (result == -EEXIST)
            return std::unexpected{
                PlatformError{.description = "another 'quorvane-host lock' is running"}};
        if (result < 0) return posixError("session bus", -result);
        return {};
    }
    Result<void> spawn(std::vector<std::string> command, int ready) {
        std::vector<char*> words;
        for (std::string& word : command) words.push_back(word.data());
        words.push_back(nullptr);
        SpawnSettings settings;
        posix_spawn_file_actions_adddup2(&settings.files, ready, kReadyDescriptor);
        const int failure = posix_spawnp(&pid_, words.front(), &settings.files,
                                         &settings.attributes, words.data(), environ);
        if (failure != 0) return posixError(command.front(), failure);
        process_ = FileDescriptor{static_cast<int>(syscall(SYS_pidfd_open, pid_, 0))};
        if (!process_) return posixError("process");
        return {};
    }
    void set(bool isLocked) {
        patience_.reset();
        service_.set(isLocked);
    }
    void end() {
        end_.reset();
        set(false);
        int status = 0;
        waitpid(pid_, &status, 0);
        ended_(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    }

    HeadlessPlatform& platform_;
    Clock clock_;
    std::function<void(int)> ended_;
    ScreenSaverService service_;
    pid_t pid_ = 0;
    FileDescriptor ready_;
    FileDescriptor process_;
    Handle readiness_;
    Handle end_;
    Timer patience_;
};

}  // namespace

Result<Handle> runLocker(const LiveServices& services, std::vector<std::string> command,
                         std::function<void(int status)> ended) {
    auto run = std::make_shared<LockerRun>(services, std::move(ended));
    if (auto started = run->start(std::move(command)); !started)
        return std::unexpected{std::move(started).error()};
    return Handle{[run = std::move(run)] {}};
}

}  // namespace quorvane
