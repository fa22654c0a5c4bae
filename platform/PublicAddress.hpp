// Addresses of the public Internet.
#pragma once

#include <cstdint>
#include <span>

namespace quorvane {

// Whether an IPv4 (4 bytes) or IPv6 (16 bytes) address belongs to a host on the public Internet:
// not to this machine, its local networks, a group of hosts, or a range reserved for other
// purposes. An IPv6 address that contains an IPv4 address counts as that address. Pure.
bool isPublicAddress(std::span<const std::uint8_t> address);

}  // namespace quorvane
