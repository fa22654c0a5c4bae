#include "platform/linux/bus/LocalNotices.hpp"

#include <utility>

namespace quorvane {

void LocalNotices::deliver(const std::string& name, const PropertyDictionary& userInfo) {
    mainThread_.post([this, name, userInfo, life = life_.watch()] {
        if (!life.isOver()) observers_.call(name, userInfo);
    });
}

Handle LocalNotices::observe(const std::string& name, DistributedNotices::Handler handler) {
    return observers_.add([name, handler = std::move(handler)](const std::string& delivered,
                                                               const PropertyDictionary& userInfo) {
        if (delivered == name) handler(userInfo);
    });
}

}  // namespace quorvane
