// A background queue that runs one action at a time, in order.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace quorvane {

// Any thread may add actions. Destroying the queue lets the running action finish and drops those
// that wait.
class SerialQueue {
public:
    virtual ~SerialQueue() = default;
    virtual void async(std::function<void()> action) = 0;
};

using MakeSerialQueue = std::function<std::unique_ptr<SerialQueue>(std::string label)>;

}  // namespace quorvane
