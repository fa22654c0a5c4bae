#include "platform/linux/files/PropertyListLinux.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace quorvane {
namespace {

constexpr std::string_view kInfo =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\"><dict><!-- a comment -->\n"
    "<key>text</key><string>a &lt;b&gt; &amp; &#xFC;</string>\n"
    "<key>yes</key><true/><key>no</key><false/>\n"
    "<key>one</key><integer>1</integer><key>minus</key><integer>-7</integer>\n"
    "<key>real</key><real>1.5</real><key>date</key><date>2026-01-02T03:04:05Z</date>\n"
    "<key>data</key><data>AAH/</data>\n"
    "<key>list</key><array><string/><array/><dict><key>k</key><true/></dict></array>\n"
    "</dict></plist>\n";

PropertyDictionary infoValues() {
    return {
        {"text", {std::string{"a <b> & ü"}}},
        {"yes", {true}},
        {"no", {false}},
        {"one", {std::int64_t{1}}},
        {"minus", {std::int64_t{-7}}},
        {"real", {1.5}},
        {"date", {WallTime{std::chrono::seconds{1'767'323'045}}}},
        {"data", {Bytes{std::byte{0}, std::byte{1}, std::byte{255}}}},
        {"list",
         {PropertyArray{{std::string{}}, {PropertyArray{}}, {PropertyDictionary{{"k", {true}}}}}}}};
}

Result<PropertyValue> parse(std::string_view text) { return parsePropertyList(bytesOf(text)); }

TEST(PropertyListTest, ReadsBothFormsAndKeepsWhatItWrites) {
    EXPECT_EQ(parse(kInfo), PropertyValue{infoValues()});
    const std::string_view binary{
        "bplist00\xD1\x01\x02\x51"
        "a\xA2\x03\x03\x10\x07\x08\x0B\x0D\x10\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x04"
        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x12",
        54};
    const PropertyArray sevens{{std::int64_t{7}}, {std::int64_t{7}}};
    EXPECT_EQ(parse(binary), (PropertyValue{PropertyDictionary{{"a", {sevens}}}}));

    auto values = infoValues();
    values["awkward"] = {std::string{" <\r\n\t&]]> \xF0\x9F\x8E\xB5"}};
    values["precise"] = {0.1};
    values["least"] = {std::numeric_limits<std::int64_t>::min()};
    const auto written = xmlPropertyList({values});
    ASSERT_TRUE(written);
    EXPECT_EQ(parsePropertyList(*written), PropertyValue{values});
}

TEST(PropertyListTest, ReadsTheOldStyleForm) {
    const auto list = parse(
        "// !$*UTF8*$!\n{ CFBundleIdentifier = a.b-c; \"a key\" = \"say \\\"\\U00fc\\101\\n\\\"\";"
        " list = (one, { k = 'v'; }, (), ); /* none */ data = <00 0fFf>; }\n");
    ASSERT_TRUE(list);
    const PropertyArray array{
        {std::string{"one"}}, {PropertyDictionary{{"k", {std::string{"v"}}}}}, {PropertyArray{}}};
    EXPECT_EQ(*list, (PropertyValue{PropertyDictionary{
                         {"CFBundleIdentifier", {std::string{"a.b-c"}}},
                         {"a key", {std::string{"say \"üA\n\""}}},
                         {"list", {array}},
                         {"data", {Bytes{std::byte{0}, std::byte{15}, std::byte{255}}}}}}));
    for (const char* malformed : {"{", "{ a = b }", "{ a b; }", "{ a = ; }", "(a b)", "( <0> )",
                                  "{ a = \"b; }", "{} more", "(\"\\U0000\")", "{ = b; }"})
        EXPECT_EQ(parse(malformed).error().code, EINVAL) << malformed;
    EXPECT_FALSE(parse(std::string("{}\0{}", 5)));
    EXPECT_FALSE(parse(std::string(200'000, '(')));
    std::string many = "(";
    for (int value = 0; value < 30'000; ++value) many += "a,";
    EXPECT_FALSE(parse(many + ")"));
}

TEST(PropertyListTest, DatesKeepTheirSecondAndTheLibrarysRange) {
    for (const std::int64_t time : {1'767'225'600'999L, 1'000L, 1L}) {
        const WallTime date{std::chrono::milliseconds{time}};
        const auto written = xmlPropertyList({date});
        ASSERT_TRUE(written);
        EXPECT_EQ(parsePropertyList(*written),
                  PropertyValue{WallTime{std::chrono::floor<std::chrono::seconds>(date)}});
    }
    EXPECT_EQ(xmlPropertyList({kDistantPast}).error().code, EOVERFLOW);
    // A text with a NUL is not truncated.
    const std::string text("a\0b", 3);
    EXPECT_EQ(xmlPropertyList({text}).error().code, EINVAL);
    EXPECT_FALSE(xmlPropertyList({PropertyArray{{PropertyDictionary{{text, {true}}}}}}));
}

TEST(PropertyListTest, ListsThatUnfoldWithoutEndAreRefused) {
    std::string deep;
    for (int level = 0; level < 200'000; ++level) deep += "<array>";
    EXPECT_FALSE(parse("<plist>" + deep));
    deep.resize(150 * 7);
    std::string closing;
    for (int level = 0; level < 150; ++level) closing += "</array>";
    EXPECT_FALSE(parse("<plist>" + deep + closing + "</plist>"));

    // Array n contains array n + 1 twice; the last one may contain the first.
    for (const bool isCircle : {false, true}) {
        std::string list = "bplist00", offsets;
        constexpr int kObjects = 60;
        for (int object = 0; object < kObjects; ++object) {
            offsets.push_back(static_cast<char>(list.size()));
            const char next = static_cast<char>(isCircle ? (object + 1) % kObjects : object + 1);
            list += object + 1 < kObjects || isCircle ? std::string{"\xA2"} + next + next
                                                      : std::string{"\xA0"};
        }
        const char table = static_cast<char>(list.size());
        list += offsets + std::string(6, '\0') + "\x01\x01" + std::string(7, '\0') +
                static_cast<char>(kObjects) + std::string(15, '\0') + table;
        EXPECT_FALSE(parse(list));
    }
}

}  // namespace
}  // namespace quorvane
