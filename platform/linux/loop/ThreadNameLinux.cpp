#include "platform/linux/loop/ThreadNameLinux.hpp"

#include <sys/prctl.h>

#include <algorithm>

namespace quorvane {

void nameCurrentThread(const std::string& name) {
    constexpr std::size_t kKept = 15;
    prctl(PR_SET_NAME, name.c_str() + name.size() - std::min(name.size(), kKept));
}

}  // namespace quorvane
