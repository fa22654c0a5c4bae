#include "bench/LinkRival.hpp"

namespace quorvane {

std::unique_ptr<LinkRival> makeZeroMQCall(LinkShape, int, const std::filesystem::path&) {
    return nullptr;
}

}  // namespace quorvane
