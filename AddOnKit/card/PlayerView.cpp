#include "AddOnKit/card/PlayerView.hpp"

#include <algorithm>
#include <cmath>

#include "AddOnKit/card/FilledTrack.hpp"
#include "AddOnKit/card/PlayerGeometry.hpp"
#include "AddOnKit/card/PlayerLayout.hpp"
#include "AddOnKit/card/PlayerStrings.hpp"
#include "AddOnKit/card/PressHighlightStyle.hpp"
#include "AddOnKit/card/TimeFormatting.hpp"
#include "AddOnKit/card/VolumeSlider.hpp"
#include "drawing/SingleLine.hpp"
#include "platform/Seconds.hpp"

namespace quorvane {
namespace {

using namespace PlayerLayout;

constexpr Duration kFrame = std::chrono::microseconds{16'667};  // while an animation runs
constexpr double kNoteSize = 30;
constexpr double kPlaceholderFill = 0.1;
constexpr double kArtworkEdge = 0.1;  // separates dark artwork from the glass
constexpr double kUnlovedOpacity = 0.7;
// The largest step, in points, that the bar may take at once. A slower bar moves with the times,
// once a second, and needs no extra frames.
constexpr double kMaxStep = 3;
constexpr double kProgressOpacity = 0.55;
constexpr double kSpeakerSymbolSize = 17;

// Composes one scene. Each part appends its nodes and records when they would next differ.
class Composer {
public:
    Composer(const PlayerView& view, const PlayerInteraction& interaction,
             const PlayerMoment& moment)
        : model_(view.model),
          environment_(view.environment),
          interaction_(interaction),
          moment_(moment),
          geometry_(PlayerGeometry::make(model_.showsHeart.get(), environment_.isRightToLeft)) {}

    PlayerScene compose() {
        scene_.isRightToLeft = environment_.isRightToLeft;
        scene_.label = localized(PlayerStrings::kNowPlaying);
        artwork();
        texts();
        if (model_.showsHeart.get()) heart();
        progress();
        transport();
        volume();
        if (interaction_.isMoving(moment_.now)) changesIn(kFrame);
        made_.scroll(moment_.now);
        return std::move(made_);
    }

private:
    void changesIn(std::optional<Duration> wait) {
        if (!wait) return;
        const Instant then = moment_.now + *wait;
        made_.holdsUntil = std::min(then, made_.holdsUntil.value_or(then));
    }

    std::string localized(const PlayerStrings::Entry& entry) const {
        return environment_.localized(entry.key);
    }

    void picture(const ImageRef& image) {
        if (image) {
            scene_.nodes.push_back(ImageNode{geometry_.artwork, kArtworkCornerRadius, image});
            scene_.nodes.push_back(ShapeNode{.frame = geometry_.artwork,
                                             .cornerRadius = kArtworkCornerRadius,
                                             .fill = Color::white(kArtworkEdge),
                                             .edgeWidth = 1 / environment_.scale});
            return;
        }
        scene_.nodes.push_back(
            ShapeNode{geometry_.artwork, kArtworkCornerRadius, Color::white(kPlaceholderFill)});
        scene_.nodes.push_back(SymbolNode{geometry_.artwork, "music.note", kNoteSize,
                                          Color::white(kPlaceholderOpacity)});
    }

    void faded(const ImageRef& image, double opacity) {
        if (opacity < 1) scene_.nodes.push_back(GroupBegin{.opacity = opacity});
        picture(image);
        if (opacity < 1) scene_.nodes.push_back(GroupEnd{});
    }

    void artwork() {
        const double arrived = interaction_.artworkChange.at(moment_.now);
        const ImageRef& image = model_.artwork.get();
        // A picture covers what is below it, so the old one stays opaque under a new one. The
        // placeholder does not cover, so an old picture fades out.
        if (arrived < 1) faded(interaction_.oldArtwork, image ? 1 : 1 - arrived);
        faded(image, arrived);
        scene_.controls.push_back({.id = SceneControl::ID::artwork,
                                   .role = SceneControl::Role::image,
                                   .frame = geometry_.artwork,
                                   .label = localized(PlayerStrings::kArtwork)});
    }

    void text(SceneControl::ID id, const Rect& field, const std::string& content,
              FontStyle::Weight weight, Color color, std::optional<Instant> start) {
        const FontStyle font{.size = kTrackTextSize, .weight = weight};
        MarqueeText marquee{.text = singleLine(content),
                            .font = font,
                            .color = color,
                            .reduceMotion = environment_.reduceMotion,
                            .frozenTime = environment_.marqueeFrozenTime,
                            .reduceMotionOverride = environment_.marqueeReduceMotion,
                            .isRightToLeft = environment_.isRightToLeft,
                            .fieldWidth = field.width,
                            .start = start};
        marquee.textWidth = environment_.measureText(marquee.text, font);
        marquee.isMovedByStage =
            marquee.textWidth * environment_.scale <= environment_.widestMovedText;
        readable(id, field, marquee.text);
        if (marquee.scrolls() && !marquee.isMovedByStage)
            made_.marquees.push_back({scene_.nodes.size(), field, marquee});
        scene_.nodes.push_back(marquee.node(field, moment_.now));
    }

    void readable(SceneControl::ID id, const Rect& frame, const std::string& text) {
        scene_.controls.push_back(
            {.id = id, .role = SceneControl::Role::text, .frame = frame, .value = text});
    }

    void texts() {
        const bool hasArtist = !model_.artist.get().empty();
        text(SceneControl::ID::title, hasArtist ? geometry_.title : geometry_.titleOnly,
             model_.title.get(), FontStyle::Weight::semibold, Color::white(),
             interaction_.titleStart);
        if (hasArtist)
            text(SceneControl::ID::artist, geometry_.artist, model_.artist.get(),
                 FontStyle::Weight::regular, Color::white(kSecondaryOpacity),
                 interaction_.artistStart);
    }

    void button(SceneControl::ID id, const Rect& frame, const Transition& press,
                std::string_view symbol, double size, double opacity,
                const PlayerStrings::Entry& label) {
        PressHighlightStyle::draw(
            scene_, frame, press.at(moment_.now),
            SymbolNode{.name = symbol, .pointSize = size, .color = Color::white(opacity)});
        scene_.controls.push_back({.id = id,
                                   .role = SceneControl::Role::button,
                                   .frame = frame,
                                   .label = localized(label)});
    }

    void heart() {
        const bool isLoved = model_.isLoved.get();
        button(SceneControl::ID::love, geometry_.heart, interaction_.love,
               isLoved ? "heart.fill" : "heart", kHeartSymbolSize, isLoved ? 1 : kUnlovedOpacity,
               isLoved ? PlayerStrings::kRemoveLove : PlayerStrings::kLove);
    }

    void time(const Rect& field, std::string content, TextAlignment alignment) {
        scene_.nodes.push_back(TextNode{.frame = field,
                                        .text = std::move(content),
                                        .font = {.size = kTimeTextSize, .hasTabularDigits = true},
                                        .color = Color::white(kSecondaryOpacity),
                                        .alignment = alignment});
    }

    void progress() {
        const double position =
            model_.position(environment_.playerFrozenDate.value_or(moment_.date));
        const std::optional<double> duration = model_.duration.get();
        // Rounded to whole pixels, so that the scene stays equal between two of them.
        const double pixels = geometry_.progress.width * environment_.scale;
        const bool isSlow = duration && pixels <= *duration * kMaxStep * environment_.scale;
        const double shown = isSlow && position < *duration ? std::floor(position) : position;
        const double filled =
            duration ? std::floor(shown / *duration * pixels) / environment_.scale : 0;
        drawFilledTrack(scene_, geometry_.progress, filled, kProgressOpacity);
        const std::string elapsed = TimeFormatting::text(position);
        time(geometry_.elapsed, elapsed, TextAlignment::leading);
        const std::string remaining = TimeFormatting::remaining(duration, position);
        time(geometry_.remaining, remaining, TextAlignment::trailing);
        scene_.controls.push_back({.id = SceneControl::ID::progress,
                                   .role = SceneControl::Role::progress,
                                   .frame = geometry_.progress,
                                   .label = localized(PlayerStrings::kPosition),
                                   .value = elapsed,
                                   .number = std::floor(position),
                                   .maximum = duration.value_or(0)});
        if (duration) readable(SceneControl::ID::remaining, geometry_.remaining, remaining);
        if (model_.isPlaying.get() && !environment_.playerFrozenDate)
            changesIn(progressChange(position, duration, isSlow ? 0 : pixels));
    }

    // The time until the next second of either text or, if `pixels` > 0, the bar's next pixel.
    static std::optional<Duration> progressChange(double position, std::optional<double> duration,
                                                  double pixels) {
        if (duration && position >= *duration) return std::nullopt;
        constexpr double kTogether = 0.05;
        double wait = 1 - (position - std::floor(position));
        if (duration) {
            const double left = *duration - position;
            const double other = left - std::floor(left);
            // If both texts would change within kTogether, one frame changes both.
            wait =
                std::abs(wait - other) < kTogether ? std::max(wait, other) : std::min(wait, other);
            if (pixels > 0) {
                const double pixel = *duration / pixels;
                wait = std::min(wait, pixel - std::fmod(position, pixel));
            }
        }
        // Slightly past the edge, so that rounding cannot leave the scene just before it.
        constexpr Duration kBeyond = std::chrono::milliseconds{1};
        return kBeyond + durationOf(wait);
    }

    void transport() {
        const bool isPlaying = model_.isPlaying.get();
        button(SceneControl::ID::previous, geometry_.previous, interaction_.previous,
               "backward.fill", kSideSymbolSize, 1, PlayerStrings::kPreviousTrack);
        button(SceneControl::ID::playPause, geometry_.playPause, interaction_.playPause,
               isPlaying ? "pause.fill" : "play.fill", kPlaySymbolSize, 1,
               isPlaying ? PlayerStrings::kPause : PlayerStrings::kPlay);
        button(SceneControl::ID::next, geometry_.next, interaction_.next, "forward.fill",
               kSideSymbolSize, 1, PlayerStrings::kNextTrack);
    }

    void volume() {
        const auto speaker = [this](const Rect& frame, std::string_view name) {
            scene_.nodes.push_back(
                SymbolNode{frame, name, kSpeakerSymbolSize, Color::white(kSpeakerOpacity)});
        };
        speaker(geometry_.quietSpeaker, "speaker.fill");
        VolumeSlider::draw(scene_, geometry_.volume, model_,
                           interaction_.thickening.at(moment_.now));
        speaker(geometry_.loudSpeaker, "speaker.wave.3.fill");
        scene_.controls.push_back(
            VolumeSlider::control(geometry_.volume, model_, environment_.localized));
    }

    const PlayerModel& model_;
    const PlayerEnvironment& environment_;
    const PlayerInteraction& interaction_;
    const PlayerMoment& moment_;
    const PlayerGeometry geometry_;
    PlayerScene made_{.scale = environment_.scale};
    Scene& scene_ = made_.scene;
};

}  // namespace

PlayerScene PlayerView::scene(const PlayerInteraction& interaction,
                              const PlayerMoment& moment) const {
    return Composer{*this, interaction, moment}.compose();
}

}  // namespace quorvane
