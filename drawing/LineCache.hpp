// A cache of recently laid-out text lines for canvases, because layout costs more than drawing.
#pragma once

#include <algorithm>
#include <list>
#include <optional>
#include <string>

#include "drawing/Scene.hpp"

namespace quorvane {

// One thread. References stay valid until the next call.
template <typename Line>
class LineCache {
public:
    // The line at its full length, or cut off where it is wider than `fit` points. `layOut()`
    // creates it if it is not cached.
    template <typename LayOut>
    Line& line(const std::string& text, const FontStyle& font, std::optional<double> fit,
               const LayOut& layOut) {
        const auto found = std::ranges::find_if(recent_, [&](const Entry& entry) {
            return entry.fit == fit && entry.font == font && entry.text == text;
        });
        if (found != recent_.end()) {
            recent_.splice(recent_.begin(), recent_, found);
        } else {
            recent_.push_front({text, font, fit, layOut()});
            if (recent_.size() > kKeptLines) recent_.pop_back();
        }
        return recent_.front().line;
    }

private:
    static constexpr std::size_t kKeptLines = 24;  // a card has four; its times change

    struct Entry {
        std::string text;
        FontStyle font;
        std::optional<double> fit;
        Line line;
    };
    std::list<Entry> recent_;  // most recently used first
};

}  // namespace quorvane
