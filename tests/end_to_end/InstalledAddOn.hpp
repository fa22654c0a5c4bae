// A session in which the host installs and starts the add-on. The add-on is not the test's child,
// so the test reads its log file.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {

class InstalledAddOn {
public:
    static constexpr char kIdentifier[] = "example.quillon.Quorvane.LockScreenAddOn";

    InstalledAddOn() = default;
    ~InstalledAddOn() { killCopies(); }
    InstalledAddOn(const InstalledAddOn&) = delete;
    InstalledAddOn& operator=(const InstalledAddOn&) = delete;

    using Run = LoggedProcess::Run;
    // Runs the host with a command to its end.
    Run host(const std::vector<std::string>& words,
             const std::map<std::string, std::string>& variables = {}) {
        std::vector<std::string> command{HOST_PROGRAM};
        command.insert(command.end(), words.begin(), words.end());
        return run(command, variables);
    }
    Run run(const std::vector<std::string>& words,
            const std::map<std::string, std::string>& variables = {}) {
        auto environment = session.environment();
        environment.push_back("QUORVANE_LOG=" + (folder() / "log").string());
        for (const auto& [name, value] : variables) environment.push_back(name + "=" + value);
        return LoggedProcess::run(words, environment);
    }
    // Waits for the text in the log, after those that earlier calls have found.
    bool says(const std::string& text) {
        return eventually([&] {
            const auto place = folder().read("log").find(text, passed_);
            if (place == std::string::npos) return false;
            passed_ = place + text.size();
            return true;
        });
    }
    std::string log() const { return folder().read("log"); }

    // Copies the built bundle and changes its version.
    std::filesystem::path copyBundle(const std::string& place, const std::string& version) {
        const auto bundle = folder() / place;
        std::filesystem::create_directories(bundle.parent_path());
        std::filesystem::copy(ADDON_BUNDLE, bundle, std::filesystem::copy_options::recursive);
        const std::string file = place + "/Contents/Info.plist";
        std::string list = folder().read(file);
        const std::string key = "<key>CFBundleShortVersionString</key>";
        const auto begin = list.find("<string>", list.find(key)) + 8;
        list.replace(begin, list.find('<', begin) - begin, version);
        folder().write(file, list);
        return bundle;
    }
    static std::string programIn(const std::filesystem::path& bundle) {
        return (bundle / "Contents/Linux/Quorvane Lock Screen").string();
    }
    void killCopies() const {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator{"/proc", error}) {
            const auto program = std::filesystem::read_symlink(entry.path() / "exe", error);
            if (!error && program.string().starts_with(folder().path().string()))
                kill(std::atoi(entry.path().filename().c_str()), SIGKILL);
        }
    }

    const TemporaryFolder& folder() const { return session.folder(); }
    std::filesystem::path support() const { return folder() / "data" / kIdentifier; }
    std::filesystem::path place() const { return support() / "Quorvane Lock Screen.app"; }
    std::filesystem::path loginItem() const {
        return folder() / "config/autostart" / (std::string{kIdentifier} + ".desktop");
    }
    std::string preferences() const { return std::string{"config/"} + kIdentifier + ".plist"; }

    LockSession session;

private:
    std::size_t passed_ = 0;
};

}  // namespace quorvane
