#include "platform/PublicAddress.hpp"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <array>
#include <sstream>

namespace quorvane {
namespace {

void expectAll(const char* addresses, bool arePublic) {
    std::istringstream words{addresses};
    for (std::string text; words >> text;) {
        std::array<std::uint8_t, 16> bytes{};
        const bool isV6 = text.find(':') != std::string::npos;
        ASSERT_EQ(inet_pton(isV6 ? AF_INET6 : AF_INET, text.c_str(), bytes.data()), 1) << text;
        EXPECT_EQ(isPublicAddress(std::span{bytes}.first(isV6 ? 16 : 4)), arePublic) << text;
    }
}

TEST(PublicAddress, IsNotOneOfTheReservedRanges) {
    expectAll(
        "0.0.0.0 0.255.255.255 10.0.0.0 10.255.255.255 100.64.0.0 100.127.255.255 127.0.0.1 "
        "169.254.0.0 169.254.255.255 172.16.0.0 172.31.255.255 192.0.0.8 192.0.2.0 192.88.99.1 "
        "192.168.0.0 198.18.0.0 198.19.255.255 198.51.100.1 203.0.113.1 224.0.0.0 239.1.1.1 "
        "240.0.0.0 255.255.255.255 :: ::1 ::ffff:8.8.8.8 ::8.8.8.8 64:ff9b::10.0.0.1 "
        "64:ff9b:1::8.8.8.8 100::1 1fff::1 2001::1 2001:1ff::1 2001:db8::1 2002::1 3fff::1 4000::1 "
        "fc00::1 fd12::1 fe80::1 fec0::1 ff02::1",
        false);
    expectAll(
        "1.0.0.0 9.255.255.255 11.0.0.0 100.63.255.255 100.128.0.0 128.0.0.0 169.253.255.255 "
        "169.255.0.0 172.15.255.255 172.32.0.0 192.0.1.0 192.167.255.255 192.169.0.0 "
        "198.17.255.255 198.20.0.0 223.255.255.255 64:ff9b::8.8.8.8 2000::1 2001:200::1 "
        "2001:db9::1 2606:4700::1 3ffe::1 3fff:1000::1",
        true);
    EXPECT_FALSE(isPublicAddress({}));
}

}  // namespace
}  // namespace quorvane
