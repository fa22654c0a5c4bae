#include "tools/CardRenderOptions.hpp"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <utility>

namespace quorvane {

const char* const kCardRenderHelp =
    R"(Usage: card-render [OPTION...] STATE.json OUTPUT.png
       card-render --control CONTROL

Draws the lock-screen card for a player state, as the add-on would show it, to a PNG file.
STATE.json is a player state as the main application sends it.

  --artwork FILE        show this picture instead of the state's own artwork; "none" for no artwork
  --at SECONDS          the moment after the state's timestamp (0)
  --marquee SECONDS     the moment of the cycle of texts that scroll (0)
  --scale NUMBER        pixels a point, 0.5 to 8 (2)
  --language LOCALE     as a user of this locale sees it, such as de_DE or ar (the environment's)
  --direction ltr|rtl   text direction (the language's)
  --backdrop WHAT       what stands behind the card: a colour such as #20242c, a PNG file that is
                        scaled to fill, or "none" for the content alone (#20242c)
  --pressed CONTROL     previous, play, next, love: held down; volume: being dragged
  --control CONTROL     draws nothing: prints where the middle of this control is, in points from
                        the card's top left
  --reduce-motion       as with the system's setting: texts that are too long stand still
  --font FAMILIES       font families in order of preference (the system's)
  --span SECONDS        an animated picture of this length, from --at and --marquee on
  --frames-per-second N of an animated picture, 1 to 60 (30)
  -h, --help            this text

Exit status: 0 when the picture was written, 1 when it could not be, 2 for a wrong command line.
)";

namespace {

using Outcome = std::expected<void, std::string>;
using Apply = std::function<Outcome(CardRenderOptions&, const std::string&)>;

std::optional<double> number(const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0') return std::nullopt;
    return value;
}

std::string shortest(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

// Sets a field to a number in a range.
template <typename Field>
Apply numberIn(Field CardRenderOptions::*field, double lowest, double highest) {
    return [=](CardRenderOptions& options, const std::string& text) -> Outcome {
        const auto value = number(text);
        if (!value || !(*value >= lowest && *value <= highest))
            return std::unexpected{"takes a number from " + shortest(lowest) + " to " +
                                   shortest(highest) + ", not \"" + text + "\""};
        options.*field = *value;
        return {};
    };
}

Apply textInto(std::string CardRenderOptions::*field) {
    return [field](CardRenderOptions& options, const std::string& text) -> Outcome {
        options.*field = text;
        return {};
    };
}

Apply controlInto(std::optional<SceneControl::ID> CardRenderOptions::*field) {
    using ID = SceneControl::ID;
    return [field](CardRenderOptions& options, const std::string& text) -> Outcome {
        constexpr std::pair<std::string_view, ID> kControls[] = {{"previous", ID::previous},
                                                                 {"play", ID::playPause},
                                                                 {"next", ID::next},
                                                                 {"love", ID::love},
                                                                 {"volume", ID::volume}};
        for (const auto& [name, id] : kControls)
            if (name == text) options.*field = id;
        if (options.*field) return {};
        return std::unexpected{"takes previous, play, next, love or volume, not \"" + text + "\""};
    };
}

Outcome setDirection(CardRenderOptions& options, const std::string& text) {
    options.isRightToLeft = text == "rtl";
    if (text == "rtl" || text == "ltr") return {};
    return std::unexpected{"takes ltr or rtl, not \"" + text + "\""};
}

struct Option {
    std::string_view name;
    Apply apply;
};

// Options that take a value.
const std::vector<Option>& options() {
    constexpr double kLongTime = 1e9;
    static const std::vector<Option> all = {
        {"--artwork", textInto(&CardRenderOptions::artworkFile)},
        {"--at", numberIn(&CardRenderOptions::at, 0, kLongTime)},
        {"--marquee", numberIn(&CardRenderOptions::marquee, 0, kLongTime)},
        {"--scale", numberIn(&CardRenderOptions::scale, 0.5, 8)},
        {"--language", textInto(&CardRenderOptions::language)},
        {"--direction", setDirection},
        {"--backdrop", textInto(&CardRenderOptions::backdrop)},
        {"--pressed", controlInto(&CardRenderOptions::pressed)},
        {"--control", controlInto(&CardRenderOptions::asked)},
        {"--font", textInto(&CardRenderOptions::fonts)},
        {"--span", numberIn(&CardRenderOptions::span, 0.1, 60)},
        {"--frames-per-second", numberIn(&CardRenderOptions::framesPerSecond, 1, 60)},
    };
    return all;
}

}  // namespace

std::expected<CardRenderOptions, std::string> parseCardRenderOptions(
    const std::vector<std::string>& arguments) {
    CardRenderOptions result;
    std::vector<std::string> files;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "-h" || *argument == "--help") {
            result.showsHelp = true;
            return result;
        }
        if (*argument == "--reduce-motion") {
            result.reducesMotion = true;
            continue;
        }
        if (!argument->starts_with("-")) {
            files.push_back(*argument);
            continue;
        }
        const auto option =
            std::find_if(options().begin(), options().end(),
                         [&](const Option& candidate) { return candidate.name == *argument; });
        if (option == options().end())
            return std::unexpected{"there is no option \"" + *argument + "\""};
        if (std::next(argument) == arguments.end())
            return std::unexpected{*argument + " needs a value"};
        if (const auto done = option->apply(result, *++argument); !done)
            return std::unexpected{std::string{option->name} + " " + done.error()};
    }
    if (result.asked && files.empty()) return result;
    if (result.asked) return std::unexpected{"--control takes no files"};
    if (files.size() != 2)
        return std::unexpected{"a state file and an output file are needed, " +
                               std::to_string(files.size()) + " given"};
    result.stateFile = files[0];
    result.outputFile = files[1];
    return result;
}

}  // namespace quorvane
