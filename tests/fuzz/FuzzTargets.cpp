#include "tests/fuzz/FuzzTargets.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "QuorvaneKit/records/PlayerStateDecoder.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "host/players/PlayerURL.hpp"
#include "host/players/Script.hpp"
#include "platform/linux/drawing/PictureDecoder.hpp"
#include "platform/linux/files/PropertyListLinux.hpp"
#include "platform/linux/ports/SocketFrame.hpp"
#include "platform/linux/processes/LogLinux.hpp"
#include "tests/QuorvaneKit/records/SampleRecords.hpp"
#include "tests/support/MemoryFiles.hpp"

namespace quorvane {
namespace {

void check(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

// A decoded record can be encoded, and decodes to the same record again.
template <typename Record>
void readRecord(ByteView input) {
    const auto record = XPCCodableHelpers::decode<Record>(input);
    if (!record) return;
    auto text = XPCCodableHelpers::encode(*record);
    check(text.has_value(), "what was decoded can be encoded");
    check(XPCCodableHelpers::decode<Record>(*text) == record,
          "what was encoded decodes to the same");
}

// The decoder that remembers the last artwork agrees with one that remembers none.
void readPlayerState(ByteView input) {
    readRecord<QuorvanePlayerState>(input);
    const auto expected = XPCCodableHelpers::decode<QuorvanePlayerState>(input);
    PlayerStateDecoder decoder;
    Bytes text = copyOf(bytesOf(kSampleText));
    check(decoder.decode(text).has_value(), "the sample decodes");
    for (int reply = 0; reply < 2; ++reply) {
        text = copyOf(input);
        const auto state = decoder.decode(text);
        check(state.has_value() == expected.has_value(), "both decoders take it");
        if (state) check(*state == *expected, "both decoders read the same");
    }
}

void readFramedRequest(ByteView input) {
    constexpr std::size_t kLength = MessagePortWire::kSecretLength;
    const Bytes secret(kLength, std::byte{'s'});
    const auto payload = MessagePortWire::unwrap(input, secret);
    const bool isOurs = input.size() >= kLength && std::ranges::equal(input.first(kLength), secret);
    check(payload.has_value() == isOurs, "exactly the secret opens a request");
    if (!payload) return;
    check(std::ranges::equal(*payload, input.subspan(kLength)), "the payload is what follows");
}

void readSocketFrame(ByteView input) {
    if (input.size() < kFrameHeaderBytes) return;
    const auto header = input.first<kFrameHeaderBytes>();
    if (const auto request = decodeRequestHeader(header)) {
        check(request->length <= kLargestBody, "a request has its bound");
        check(std::ranges::equal(encode(*request), header), "a request has one form");
    }
    if (const auto reply = decodeReplyHeader(header)) {
        check(reply->length <= kLargestBody, "a reply has its bound");
        check(std::ranges::equal(encode(*reply), header), "a reply has one form");
    }
}

void readPropertyList(ByteView input) {
    const auto value = parsePropertyList(input);
    if (!value) return;
    const auto written = xmlPropertyList(*value);
    if (!written) return;  // a text or a date that XML cannot hold
    const auto again = parsePropertyList(*written);
    check(again.has_value(), "what was written can be read");
    check(xmlPropertyList(*again) == written, "and is written the same again");
}

void readScriptFile(ByteView input) {
    MemoryFiles files;
    files.put("set.json", textOf(input));
    files.put("cover.png", "picture");
    const auto script = readScript("set.json", files.table());
    if (!script) {
        check(script.error().starts_with("set.json"), "a failure names the file");
        return;
    }
    check(script->startTrack < script->tracks.size(), "the first track is there");
    check(script->volume >= 0 && script->volume <= 100, "the volume is a percentage");
}

void readPicture(ByteView input) { decodePicture(input, {16, 16}); }

void readURL(ByteView input) {
    if (const auto path = localFile(textOf(input)))
        check(path->is_absolute(), "a file's place is absolute");
}

// An untrusted value adds no line end and no terminal control sequence to a log line.
void renderLogLine(ByteView input) {
    const std::string_view text = textOf(input);
    const LogArgument arguments[] = {text, text, double(input.size())};
    const LogLine line{.subsystem = "s",
                       .category = "c",
                       .level = LogLevel::info,
                       .format = "a %{public}s b %{private}s c %f",
                       .arguments = arguments};
    const std::string shown = standardErrorLine(line, WallTime{}, false);
    check(shown.ends_with('\n'), "a line ends");
    const auto isControl = [](unsigned char letter) { return letter < 0x20 || letter == 0x7f; };
    check(std::none_of(shown.begin(), shown.end() - 1, isControl), "a line is one line");
    check(shown.contains(" b <private> c "), "private text is not shown");
}

constexpr std::string_view kConfigurations[] = {
    R"({"isEnabled":true,"removalRequested":false,"minimumAddOnVersion":"1.0"})"};
constexpr std::string_view kHellos[] = {
    R"({"protocolVersion":1,"addOnVersion":"1.2.3","macOSVersion":"26.0.0",)"
    R"("supportsThisMacOS":true,"installID":"7","supersedesRemoval":true})"};
constexpr std::string_view kStates[] = {kSampleText, kSmallestText};
constexpr std::string_view kRequests[] = {"ssssssssssssssssssssssssssssssss{}"};
constexpr std::string_view kFrames[] = {
    {"QVrq\x21\0\0\0\x01\0\0\0\x01\0\0\0\x07\0\0\0\0\0\0\0", 24},
    {"QVrp\x40\0\0\0\0\0\0\0\0\0\0\0\x07\0\0\0\0\0\0\0", 24}};
constexpr std::string_view kLists[] = {
    "<plist version=\"1.0\"><dict><key>a</key><array><integer>1</integer><real>2.5</real><true/>"
    "<data>AAEC</data><date>2026-01-01T00:00:00Z</date><string>&lt;x&#228;</string></array></dict>"
    "</plist>",
    "// !$*UTF8*$!\n{ CFBundleIdentifier = \"a.b\"; list = (one, \"t\\U00e4\\n\", <0fbd77>); }",
    {"bplist00\xD1\x01\x02\x51"
     "a\x10\x07\x08\x0B\x0D\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
     "\x0F",
     49}};
constexpr std::string_view kScripts[] = {
    R"({"player":"spotify","volume":64.0,"repeat":"one","startTrack":1,"startPosition":2.5,)"
    R"("tracks":[{"title":"One","artist":"A","duration":214,"artwork":"cover.png"},)"
    R"({"title":"Two","artist":"","isLiveStream":true,"rating":80}]})"};
constexpr std::string_view kPictures[] = {
    {"GIF89a\x01\0\x01\0\x80\0\0\xFF\xFF\xFF\0\0\0,\0\0\0\0\x01\0\x01\0\0\x02\x02"
     "D\x01\0;",
     35},
    {"\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x01\0\0\0\x01\x08\x06\0\0\0\x1F\x15\xC4\x89"
     "\0\0\0\rIDATx\x9C"
     "c\xF8\xCF\xC0\xF0\x1F\0\x05\0\x01\xFF\xA7\xF0\x1B\xE0\0\0\0\0IEND\xAE"
     "B`\x82",
     70},
    {"\xFF\xD8\xFF\xE0\0\x10JFIF\0\x01\x01\0\0\x01\0\x01\0\0\xFF\xC0\0\x0B\x08\0\x01\0\x01\x01\x01"
     "\x11\0\xFF\xD9",
     35},
    {"RIFF\x1A\0\0\0WEBPVP8L\x0D\0\0\0/\0\0\0\x10\x07\x10\x11\x11\x88\x88\xFE\x07\0", 34}};
constexpr std::string_view kURLs[] = {"file:///music/a%20b.png", "file://localhost/x"};
constexpr std::string_view kTexts[] = {"Title \x1b[2J\r\n \xF0\x9F\x8E\xB5"};

constexpr FuzzTarget kTargets[] = {
    {"configuration", readRecord<LockScreenAddOnConfiguration>, kConfigurations},
    {"hello", readRecord<LockScreenAddOnHello>, kHellos},
    {"log-line", renderLogLine, kTexts},
    {"picture", readPicture, kPictures},
    {"player-state", readPlayerState, kStates},
    {"property-list", readPropertyList, kLists},
    {"request", readFramedRequest, kRequests},
    {"script", readScriptFile, kScripts},
    {"socket-frame", readSocketFrame, kFrames},
    {"url", readURL, kURLs},
};

}  // namespace

std::span<const FuzzTarget> fuzzTargets() { return kTargets; }

}  // namespace quorvane
