#include "platform/linux/bus/LocalNotices.hpp"

#include <utility>

namespace quorvane {

LocalNotices::LocalNotices(MainThread mainThread) : mainThread_(std::move(mainThread)) {}

void LocalNotices::deliver(const std::string& name, const PropertyDictionary& userInfo) {
    mainThread_.post([name, userInfo, weak = std::weak_ptr{observers_}] {
        if (const auto observers = weak.lock()) observers->call(name, userInfo);
    });
}

Handle LocalNotices::observe(const std::string& name, DistributedNotices::Handler handler) {
    return observers_->add([name, handler = std::move(handler)](
                               const std::string& delivered, const PropertyDictionary& userInfo) {
        if (delivered == name) handler(userInfo);
    });
}

}  // namespace quorvane
