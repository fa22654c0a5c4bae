// card-render: draws the card for a player state to a picture file.

#include <iostream>
#include <utility>

#include "AddOnKit/card/PlayerGeometry.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "tools/AnimatedPNG.hpp"
#include "tools/CardRenderOptions.hpp"
#include "tools/CardStill.hpp"
#include "tools/Files.hpp"

namespace quorvane {
namespace {

using Outcome = std::expected<void, std::string>;

std::string problem(const CodingError& error) {
    using Kind = CodingError::Kind;
    const std::string key = "\"" + std::string{error.key} + "\"";
    if (error.key.empty()) return "no JSON object of that form";
    switch (error.kind) {
        case Kind::keyNotFound: return key + " is missing";
        case Kind::valueNotFound: return key + " is null";
        case Kind::typeMismatch: return key + " has another type";
        default: return key + " has no valid value";
    }
}

std::expected<QuorvanePlayerState, std::string> readState(const CardRenderOptions& options) {
    auto text = readFile(options.stateFile);
    if (!text) return std::unexpected{text.error()};
    auto state = XPCCodableHelpers::decode<QuorvanePlayerState>(*text);
    if (!state)
        return std::unexpected{options.stateFile +
                               ": is not a player state: " + problem(state.error())};
    if (options.artworkFile.empty() || !state->track) return *std::move(state);
    if (options.artworkFile == "none") {
        state->track->artworkData.reset();
        return *std::move(state);
    }
    auto artwork = readFile(options.artworkFile);
    if (!artwork) return std::unexpected{artwork.error()};
    state->track->artworkData = SharedBytes{*std::move(artwork)};
    return *std::move(state);
}

Outcome render(const CardRenderOptions& options) {
    const auto state = readState(options);
    if (!state) return std::unexpected{state.error()};
    auto still = CardStill::make(*state, options);
    if (!still) return std::unexpected{still.error()};

    if (!options.span) return writeFile(options.outputFile, encodePNG((*still)->draw(0).get()));
    AnimatedPNG animation{options.framesPerSecond};
    for (double elapsed = 0; elapsed < *options.span; elapsed += 1 / options.framesPerSecond)
        animation.add((*still)->draw(elapsed));
    return writeFile(options.outputFile, animation.finish());
}

Point middleOf(SceneControl::ID control, bool isRightToLeft) {
    const PlayerGeometry geometry = PlayerGeometry::make(true, isRightToLeft);
    const auto middle = [](const Rect& rect) { return Point{rect.midX(), rect.midY()}; };
    switch (control) {
        case SceneControl::ID::previous: return middle(geometry.previous);
        case SceneControl::ID::playPause: return middle(geometry.playPause);
        case SceneControl::ID::next: return middle(geometry.next);
        case SceneControl::ID::love: return middle(geometry.heart);
        case SceneControl::ID::volume: return middle(geometry.volume);
        default: std::unreachable();  // the options accept no other control
    }
}

int run(const std::vector<std::string>& arguments) {
    const auto options = parseCardRenderOptions(arguments);
    if (!options) {
        std::cerr << "card-render: " << options.error() << ".\nTry \"card-render --help\".\n";
        return 2;
    }
    if (options->showsHelp) {
        std::cout << kCardRenderHelp;
        return 0;
    }
    if (!options->language.empty()) {
        setenv("LC_ALL", options->language.c_str(), 1);
        unsetenv("LANGUAGE");
    }
    if (options->asked) {
        const Point middle = middleOf(*options->asked, isRightToLeft(*options));
        std::cout << middle.x << ' ' << middle.y << '\n';
        return 0;
    }
    if (const auto done = render(*options); !done) {
        std::cerr << "card-render: " << done.error() << ".\n";
        return 1;
    }
    return 0;
}

}  // namespace
}  // namespace quorvane

int main(int argumentCount, char** arguments) {
    return quorvane::run({arguments + 1, arguments + argumentCount});
}
