// The command line of card-render.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "drawing/Scene.hpp"

namespace quorvane {

struct CardRenderOptions {
    std::string stateFile;
    std::string outputFile;
    std::string artworkFile;  // replaces the state's artwork when not empty
    std::string backdrop = "#20242c";
    std::string fonts;  // empty: the system's fonts
    double at = 0;      // seconds after the state was taken
    double marquee = 0;
    double scale = 2;
    std::optional<double> span;  // seconds of an animated picture
    double framesPerSecond = 30;
    std::string language;               // a locale; empty: the environment's
    std::optional<bool> isRightToLeft;  // nullopt: the language's direction
    bool reducesMotion = false;
    std::optional<SceneControl::ID> pressed;  // the volume is dragged
    std::optional<SceneControl::ID> asked;    // prints its place and draws nothing
    bool showsHelp = false;
};

// The error is a sentence for the user.
std::expected<CardRenderOptions, std::string> parseCardRenderOptions(
    const std::vector<std::string>& arguments);

extern const char* const kCardRenderHelp;

}  // namespace quorvane
