#include "platform/linux/processes/OpenCommandLine.hpp"

namespace quorvane {

std::expected<OpenCommandLine, std::string> OpenCommandLine::parse(
    std::span<const std::string> arguments) {
    OpenCommandLine line;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& word = arguments[index];
        if (word == "--args") {
            line.arguments.assign(arguments.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                                  arguments.end());
            break;
        }
        if (word == "-h" || word == "--help") return OpenCommandLine{.command = Command::help};
        if (word == "-V" || word == "--version")
            return OpenCommandLine{.command = Command::version};
        if (word == "-n" || word == "--new")
            line.isAlwaysNew = true;
        else if (word == "-g" || word == "--background")
            continue;  // this program never brings an application to the front
        else if (word.starts_with('-'))
            return std::unexpected{"unknown option '" + word + "'"};
        else if (line.bundle.empty())
            line.bundle = word;
        else
            return std::unexpected{"one application at a time: '" + word + "' is too much"};
    }
    if (line.bundle.empty()) return std::unexpected{"which application? Name its bundle."};
    return line;
}

std::string OpenCommandLine::help() {
    return "Usage: quorvane-open [OPTION]... BUNDLE [--args ARGUMENT...]\n"
           "\n"
           "Starts an application from its bundle, a folder like \"Quorvane Lock Screen.app\". It\n"
           "runs on its own: it is no child of the caller's and keeps nothing of the terminal.\n"
           "\n"
           "Options:\n"
           "  -n, --new           start it even if it runs in this login already\n"
           "  -g, --background    do not bring it to the front; it never is brought there\n"
           "  --args ARGUMENT...  all that follows is for the application\n"
           "  -h, --help          show this text and exit\n"
           "  -V, --version       show the version and exit\n"
           "\n"
           "Exit status: 0 if it was started or runs already, 1 if it could not be started, 2 if\n"
           "the command line is wrong.\n";
}

}  // namespace quorvane
