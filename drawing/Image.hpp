// A picture that a canvas can draw, made by the platform from encoded bytes.
#pragma once

#include <functional>
#include <memory>

#include "platform/Bytes.hpp"
#include "platform/Observable.hpp"

namespace quorvane {

// Shared. Two scenes show the same picture when they hold the same object. Any thread may release
// it.
class Image {
public:
    enum class State { arriving, ready, undecodable };

    explicit Image(State state = State::ready) : state_(state) {}
    virtual ~Image() = default;

    // Main thread. A platform that decodes a picture when a canvas first draws it sets the state
    // then; until then the canvas does not draw the picture.
    Observable<State>& state() const { return state_; }

private:
    mutable Observable<State> state_;
};

using ImageRef = std::shared_ptr<const Image>;

// Returns null when the system cannot decode the bytes, or when the picture is too large to decode
// safely. A picture that is still arriving may turn out to be undecodable later. Main thread.
using DecodeImage = std::function<ImageRef(ByteView encoded)>;

}  // namespace quorvane
