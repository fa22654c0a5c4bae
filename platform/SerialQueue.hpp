// A background queue that runs one action at a time, in order.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quorvane {

// Any thread may add actions. Destroying the queue drops pending actions and waits for the running
// one, so no action may destroy its queue.
class SerialQueue {
public:
    virtual ~SerialQueue() = default;
    // Returns false when the system refuses to create the queue's thread; the action is then
    // dropped and never runs. Does not throw.
    [[nodiscard]] virtual bool async(std::function<void()> action) = 0;
};

using MakeSerialQueue = std::function<std::unique_ptr<SerialQueue>(std::string label)>;

}  // namespace quorvane
