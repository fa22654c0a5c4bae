// A session in which the add-on is installed by its host and started by it, out of the test's
// sight: what it does is in its log.
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
    // What was started detached ends with the test too.
    ~InstalledAddOn() { killCopies(); }
    InstalledAddOn(const InstalledAddOn&) = delete;
    InstalledAddOn& operator=(const InstalledAddOn&) = delete;

    using Run = LoggedProcess::Run;
    // The host with a command, its end awaited.
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
    // Whether the log comes to hold the text, after what earlier calls have passed.
    bool says(const std::string& text) {
        return eventually([&] {
            const auto place = folder().read("log").find(text, passed_);
            if (place == std::string::npos) return false;
            passed_ = place + text.size();
            return true;
        });
    }
    std::string log() const { return folder().read("log"); }

    // A copy of the built bundle, of another version.
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
