#include "platform/PublicAddress.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace quorvane {
namespace {

template <std::size_t kLength>
struct Range {
    std::array<std::uint8_t, kLength> prefix;  // zeros after the given bytes
    std::size_t bits;

    bool contains(std::span<const std::uint8_t> address) const {
        const std::size_t whole = bits / 8;
        const int unused = 8 - static_cast<int>(bits % 8);
        return std::ranges::equal(address.first(whole), std::span{prefix}.first(whole)) &&
               (unused == 8 || address[whole] >> unused == prefix[whole] >> unused);
    }
};

// The registry of special-purpose addresses (RFC 6890 and its successors).
constexpr Range<4> kReserved[] = {
    {{0}, 8},              // this network
    {{10}, 8},             // private
    {{100, 64}, 10},       // behind a provider's address translation
    {{127}, 8},            // loopback
    {{169, 254}, 16},      // link-local
    {{172, 16}, 12},       // private
    {{192, 0, 0}, 24},     // protocol assignments
    {{192, 0, 2}, 24},     // documentation
    {{192, 88, 99}, 24},   // relays to IPv6
    {{192, 168}, 16},      // private
    {{198, 18}, 15},       // benchmarks
    {{198, 51, 100}, 24},  // documentation
    {{203, 0, 113}, 24},   // documentation
    {{224}, 3},            // multicast, reserved, broadcast
};
// Only these are assigned to hosts: no loopback, link-local, unique local, multicast or IPv4-mapped
// address is in it.
constexpr Range<16> kGlobal{{0x20}, 3};
constexpr Range<16> kReservedGlobal[] = {
    {{0x20, 0x01}, 23},              // protocol assignments, Teredo
    {{0x20, 0x01, 0x0d, 0xb8}, 32},  // documentation
    {{0x20, 0x02}, 16},              // 6to4
    {{0x3f, 0xff}, 20},              // documentation
};
// A network without IPv4 reaches IPv4 hosts under this prefix.
constexpr Range<16> kTranslated{{0x00, 0x64, 0xff, 0x9b}, 96};

bool isIn(const auto& ranges, std::span<const std::uint8_t> address) {
    return std::ranges::any_of(ranges, [&](const auto& range) { return range.contains(address); });
}

}  // namespace

bool isPublicAddress(std::span<const std::uint8_t> address) {
    if (address.size() == 4) return !isIn(kReserved, address);
    if (address.size() != 16) return false;
    if (kTranslated.contains(address)) return !isIn(kReserved, address.last(4));
    return kGlobal.contains(address) && !isIn(kReservedGlobal, address);
}

}  // namespace quorvane
