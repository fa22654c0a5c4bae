#include "host/addon/HostCommandLine.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace quorvane {
namespace {

using Command = HostCommandLine::Command;
using Arguments = std::vector<std::string>;

TEST(HostCommandLine, UnderstandsOrExplainsWhatIsWrong) {
    const std::pair<Arguments, HostCommandLine> understood[] = {
        {{}, {}},
        {{"update", "--from", "/X.app"}, {.command = Command::update, .bundle = "/X.app"}},
        {{"run", "--only", "mpv"}, {.onlyPlayer = "mpv"}},
        {{"--script=x=y.json", "run"}, {.script = "x=y.json"}},
        {{"--player=scripted", "--script", "-x"}, {.script = "-x"}},
        {{"set", "x", "-5"}, {.command = Command::set, .words = {"x", "-5"}}},
        {{"nonsense", "-h"}, {.command = Command::help}},
    };
    for (const auto& [arguments, expected] : understood) {
        const auto line = HostCommandLine::parse(arguments);
        ASSERT_TRUE(line) << line.error();
        EXPECT_EQ(*line, expected) << testing::PrintToString(arguments);
    }
    const std::pair<Arguments, std::string> mistakes[] = {
        {{"sing"}, "unknown command 'sing'"},
        {{"run", "status"}, "unexpected argument 'status': give one command at a time"},
        {{"--loud=1"}, "unknown option '--loud'"},
        {{"--script"}, "--script needs a value: --script FILE"},
        {{"--script", "--only", "x"}, "--script needs a value: --script FILE"},
        {{"--player", "spinet"}, "--player takes mpris or scripted, not 'spinet'"},
        {{"--player", "scripted"}, "--player scripted needs --script FILE"},
        {{"--player", "mpris", "--script", "x"}, "--script cannot be used with --player mpris"},
        {{"--script", "x", "--only", "y"}, "--only cannot be used with a scripted player"},
        {{"remove", "--from", "x"}, "--from is an option of 'install' and 'update' only"},
        {{"install", "--script", "x"}, "--script is an option of 'run' only"},
    };
    for (const auto& [arguments, expected] : mistakes) {
        const auto line = HostCommandLine::parse(arguments);
        EXPECT_EQ(line ? "" : line.error(), expected);
    }
}

}  // namespace
}  // namespace quorvane
