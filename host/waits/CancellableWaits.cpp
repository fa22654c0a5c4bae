#include "host/waits/CancellableWaits.hpp"

namespace quorvane {

class CancellableWaits::Flag : public WaitFlag {
public:
    explicit Flag(std::shared_ptr<State> state) : state_(std::move(state)) {
        const std::lock_guard guard{state_->mutex};
        state_->flags.insert(this);
        if (state_->hasEnded) flag_->raise();
    }
    ~Flag() override {
        const std::lock_guard guard{state_->mutex};
        state_->flags.erase(this);
    }
    void raise() override { flag_->raise(); }
    bool waitFor(Duration limit) override { return flag_->waitFor(limit); }

private:
    const std::unique_ptr<WaitFlag> flag_ = makeWaitFlag();
    const std::shared_ptr<State> state_;
};

MakeWaitFlag CancellableWaits::make() const {
    return [state = state_] { return std::make_unique<Flag>(state); };
}

void CancellableWaits::end() {
    const std::lock_guard guard{state_->mutex};
    state_->hasEnded = true;
    for (WaitFlag* flag : state_->flags) flag->raise();
}

}  // namespace quorvane
