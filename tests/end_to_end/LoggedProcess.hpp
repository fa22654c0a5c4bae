// A child process whose standard error is read line by line.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/files/FileDescriptor.hpp"
#include "tests/support/ChildProcess.hpp"

namespace quorvane {

class LoggedProcess {
public:
    LoggedProcess() = default;
    LoggedProcess(const std::vector<std::string>& arguments,
                  const std::vector<std::string>& environment) {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        // Through /proc, because plain shells redirect only descriptors of one digit.
        std::vector<std::string> command{
            "sh", "-c", "exec \"$@\" 2>/proc/self/fd/" + std::to_string(ends[1]), "sh"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        process_ = ChildProcess{command, environment, ends[1]};
        ::close(ends[1]);
        output_ = FileDescriptor{ends[0]};
    }
    // The result of a finished program: its exit status, -1 for none, and both of its outputs.
    struct Run {
        int status;
        std::string text;
    };
    static Run run(std::vector<std::string> arguments,
                   const std::vector<std::string>& environment) {
        arguments.insert(arguments.begin(), {"sh", "-c", "exec \"$@\" >&2", "sh"});
        LoggedProcess process{arguments, environment};
        const int status = process.process().exitStatus(std::chrono::seconds{60}).value_or(-1);
        process.readWhatIsThere();
        return {status, process.log()};
    }

    ChildProcess& process() { return process_; }

    // The next line that contains the text, after those that earlier calls have returned; "" when
    // none arrives in time.
    std::string next(std::string_view text,
                     std::chrono::milliseconds patience = std::chrono::seconds{30}) {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (true) {
            for (std::size_t end = 0; (end = text_.find('\n', seen_)) != std::string::npos;) {
                const std::string line = text_.substr(seen_, end - seen_);
                seen_ = end + 1;
                if (line.find(text) != std::string::npos) return line;
            }
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (!readMore(std::max(left, std::chrono::milliseconds{0}))) return {};
        }
    }
    bool says(std::string_view text,
              std::chrono::milliseconds patience = std::chrono::seconds{30}) {
        return !next(text, patience).empty();
    }
    // How often the text occurs in all output so far.
    int count(std::string_view text) {
        readWhatIsThere();
        int times = 0;
        for (auto at = text_.find(text); at != text_.npos; at = text_.find(text, at + 1)) ++times;
        return times;
    }
    const std::string& log() const { return text_; }

private:
    void readWhatIsThere() {
        while (readMore(std::chrono::milliseconds{0})) {
        }
    }
    bool readMore(std::chrono::milliseconds patience) {
        pollfd entry{output_.get(), POLLIN, 0};
        if (poll(&entry, 1, static_cast<int>(patience.count())) <= 0) return false;
        char buffer[65536];
        const ssize_t length = read(output_.get(), buffer, sizeof buffer);
        if (length <= 0) return false;
        text_.append(buffer, static_cast<std::size_t>(length));
        return true;
    }

    ChildProcess process_;
    FileDescriptor output_;
    std::string text_;
    std::size_t seen_ = 0;
};

}  // namespace quorvane
