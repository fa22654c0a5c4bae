#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "platform/Observable.hpp"
#include "platform/PublicAddress.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

TEST(Observable, NotifiesLiveListenersOfRealChanges) {
    Observable<int> value{1};
    std::vector<int> heard;
    Handle listener = value.subscribe([&] { heard.push_back(value.get()); });
    for (const int next : {1, 2, 2, 3}) value.set(next);
    listener.reset();
    value.set(4);
    EXPECT_EQ(heard, (std::vector{2, 3}));
}

TEST(Observable, AListenerMayDropOthersItselfAndTheObservable) {
    auto value = std::make_unique<Observable<int>>(0);
    int calls = 0;
    Handle dropped;
    Handle dropping = value->subscribe([&] {
        ++calls;
        dropped.reset();
        dropping.reset();
    });
    dropped = value->subscribe([&] { ADD_FAILURE() << "was dropped before its turn"; });
    value->set(1);
    value->set(2);
    EXPECT_EQ(calls, 1);
    Handle outliving = value->subscribe([] {});
    value.reset();
}

TEST(LogFormat, RendersEachPlaceholderAndHidesPrivateText) {
    RecordingLog log;
    const Logger logger{log.sink(), "subsystem", "category"};
    logger.info("a %{public}s, b %{private}s, c %s, d %{bool}d, e %d", "one", std::string{"two"},
                "three", true, -5);
    logger.error("f %ld, g %u, h %llu, i %lu, j %f → done", -1L, 7U, 18'446'744'073'709'551'615ULL,
                 3UL, 1.5);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].text, "a one, b two, c three, d true, e -5");
    EXPECT_EQ(lines[0].redacted, "a one, b <private>, c <private>, d true, e -5");
    EXPECT_EQ(lines[0].level, LogLevel::info);
    EXPECT_EQ(lines[1].text, "f -1, g 7, h 18446744073709551615, i 3, j 1.500000 → done");
    EXPECT_EQ(lines[1].level, LogLevel::error);
}

TEST(LogFormat, AcceptsOnlyWhatFits) {
    using Kind = LogPlaceholder::Kind;
    EXPECT_TRUE(fitsPlaceholder<bool>(Kind::boolean));
    EXPECT_FALSE(fitsPlaceholder<int>(Kind::boolean));
    EXPECT_FALSE(fitsPlaceholder<bool>(Kind::int32));
    EXPECT_FALSE(fitsPlaceholder<long>(Kind::int32));
    EXPECT_FALSE(fitsPlaceholder<unsigned>(Kind::int64));
    EXPECT_FALSE(fitsPlaceholder<double>(Kind::text));
    LogPlaceholder placeholder;
    EXPECT_FALSE(nextPlaceholder("50% done", 0, placeholder));
}

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
