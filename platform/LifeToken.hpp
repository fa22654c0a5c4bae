// Token that lets an object detect its own destruction during a callback.
#pragma once

#include <memory>

namespace quorvane {

// A member of the object whose lifetime it tracks. Main thread only.
class LifeToken {
public:
    class Watch {
    public:
        bool isOver() const { return token_.expired(); }

    private:
        friend class LifeToken;
        explicit Watch(const std::shared_ptr<const bool>& token) : token_(token) {}
        std::weak_ptr<const bool> token_;
    };

    LifeToken() = default;
    LifeToken(const LifeToken&) = delete;
    LifeToken& operator=(const LifeToken&) = delete;

    Watch watch() const { return Watch{token_}; }

private:
    std::shared_ptr<const bool> token_ = std::make_shared<const bool>(true);
};

}  // namespace quorvane
