#include "platform/linux/processes/OpenCommandLinux.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

std::string openCommand() {
    std::error_code error;
    const auto own = std::filesystem::read_symlink("/proc/self/exe", error);
    const auto beside = own.parent_path() / kOpenCommand;
    return !error && access(beside.c_str(), X_OK) == 0 ? beside.string() : kOpenCommand;
}

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void duplicate(int descriptor, int as) {
        posix_spawn_file_actions_adddup2(&actions_, descriptor, as);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

Result<pid_t> spawn(std::vector<std::string> words, int output) {
    FileActions actions;
    actions.duplicate(output, STDOUT_FILENO);
    actions.duplicate(output, STDERR_FILENO);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t pid = 0;
    const int failure =
        posix_spawnp(&pid, arguments[0], actions.get(), nullptr, arguments.data(), environ);
    if (failure != 0) return posixError(words.front(), failure);
    return pid;
}

std::string readToEnd(int descriptor) {
    std::string text;
    char buffer[4096];
    while (true) {
        const ssize_t length = read(descriptor, buffer, sizeof buffer);
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) return text;
        text.append(buffer, static_cast<std::size_t>(length));
    }
}

Result<OpenCommandEnd> run(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{openCommand()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return posixError("pipe");
    const FileDescriptor reading{ends[0]};
    FileDescriptor writing{ends[1]};
    const auto pid = spawn(std::move(words), writing.get());
    writing.reset();
    if (!pid) return std::unexpected{pid.error()};
    std::string output = readToEnd(reading.get());
    while (output.ends_with('\n')) output.pop_back();
    int status = 0;
    while (waitpid(*pid, &status, 0) < 0)
        if (errno != EINTR) return posixError("waitpid");
    return OpenCommandEnd{WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                          std::move(output)};
}

}  // namespace

RunOpenCommand makeRunOpenCommand() { return run; }

}  // namespace quorvane
