#include "platform/PublicAddress.hpp"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <array>

namespace quorvane {
namespace {

// The first and the last address of each range, and its neighbours.
TEST(PublicAddress, IsNotOneOfTheReservedRanges) {
    const std::pair<const char*, bool> rows[] = {
        {"0.0.0.0", false},
        {"0.255.255.255", false},
        {"1.0.0.0", true},
        {"9.255.255.255", true},
        {"10.0.0.0", false},
        {"10.255.255.255", false},
        {"11.0.0.0", true},
        {"100.63.255.255", true},
        {"100.64.0.0", false},
        {"100.127.255.255", false},
        {"100.128.0.0", true},
        {"127.0.0.1", false},
        {"128.0.0.0", true},
        {"169.253.255.255", true},
        {"169.254.0.0", false},
        {"169.255.0.0", true},
        {"172.15.255.255", true},
        {"172.16.0.0", false},
        {"172.31.255.255", false},
        {"172.32.0.0", true},
        {"192.0.0.8", false},
        {"192.0.1.0", true},
        {"192.0.2.0", false},
        {"192.88.99.1", false},
        {"192.167.255.255", true},
        {"192.168.0.0", false},
        {"192.169.0.0", true},
        {"198.17.255.255", true},
        {"198.18.0.0", false},
        {"198.19.255.255", false},
        {"198.20.0.0", true},
        {"198.51.100.1", false},
        {"203.0.113.1", false},
        {"223.255.255.255", true},
        {"224.0.0.0", false},
        {"239.1.1.1", false},
        {"240.0.0.0", false},
        {"255.255.255.255", false},
        {"::", false},
        {"::1", false},
        {"::ffff:8.8.8.8", false},
        {"::8.8.8.8", false},
        {"64:ff9b::8.8.8.8", true},
        {"64:ff9b::10.0.0.1", false},
        {"64:ff9b:1::8.8.8.8", false},
        {"100::1", false},
        {"1fff::1", false},
        {"2000::1", true},
        {"2001::1", false},
        {"2001:1ff::1", false},
        {"2001:200::1", true},
        {"2001:db8::1", false},
        {"2001:db9::1", true},
        {"2002::1", false},
        {"2606:4700::1", true},
        {"3ffe::1", true},
        {"3fff::1", false},
        {"3fff:1000::1", true},
        {"4000::1", false},
        {"fc00::1", false},
        {"fd12::1", false},
        {"fe80::1", false},
        {"fec0::1", false},
        {"ff02::1", false},
    };
    for (const auto& [text, isPublic] : rows) {
        std::array<std::uint8_t, 16> bytes{};
        const bool isV4 = inet_pton(AF_INET, text, bytes.data()) == 1;
        ASSERT_TRUE(isV4 || inet_pton(AF_INET6, text, bytes.data()) == 1) << text;
        EXPECT_EQ(isPublicAddress(std::span{bytes}.first(isV4 ? 4 : 16)), isPublic) << text;
    }
    EXPECT_FALSE(isPublicAddress({}));
}

}  // namespace
}  // namespace quorvane
