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
    std::string fonts;  // empty: the system's
    double at = 0;      // seconds after the state was taken
    double marquee = 0;
    double scale = 2;
    std::optional<double> span;  // seconds of an animated picture
    double framesPerSecond = 30;
    std::string language;               // a locale; empty: the environment's
    std::optional<bool> isRightToLeft;  // unset: as the language is
    bool reducesMotion = false;
    std::optional<SceneControl::ID> pressed;  // the volume: dragged
    std::optional<SceneControl::ID> asked;    // its place is told, nothing is drawn
    bool showsHelp = false;
};

// The error is one sentence for a person.
std::expected<CardRenderOptions, std::string> parseCardRenderOptions(
    const std::vector<std::string>& arguments);

extern const char* const kCardRenderHelp;

}  // namespace quorvane
