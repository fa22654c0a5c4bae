#include "QuorvaneKit/json/JSONReader.hpp"

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <array>

#include "platform/Character.hpp"

namespace quorvane {
namespace {

// Strings are checked here to be UTF-8, because the parser's own check accepts half a surrogate
// pair. Numbers stay text, because most are not requested and the parser's conversion of extreme
// exponents is unreliable. The parser's vectorised string scan is off, because it accepts some
// control characters at certain alignments.
constexpr unsigned kParseFlags =
    rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;

// Handler of the parser's events. Returning false ends the parse.
class Collector : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Collector> {
public:
    Collector(std::span<const JSONField> fields, std::span<JSONValue> values,
              const rapidjson::MemoryStream& stream)
        : fields_(fields), values_(values), stream_(stream) {}

    bool isObject() const { return isObject_; }

    bool Null() { return keep(JSONValue::Kind::null); }
    bool Bool(bool value) { return keep(JSONValue::Kind::boolean, {}, value); }
    bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
        return keep(JSONValue::Kind::number, {text, length});
    }
    bool String(const char* text, rapidjson::SizeType length, bool) {
        const std::string_view string{text, length};
        return isValidUTF8(string) && keep(JSONValue::Kind::string, string);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool) {
        const std::string_view key{text, length};
        place_ = placeOf(key);
        return isValidUTF8(key);
    }

    bool StartObject() {
        if (depth_ == 0) {
            isObject_ = true;
            return open(kRootObject);
        }
        const std::size_t place = place_;
        keep(JSONValue::Kind::object);
        return open(place);
    }
    bool StartArray() {
        if (depth_ == 0) return false;
        keep(JSONValue::Kind::array);
        return open(kNowhere);
    }
    bool EndObject(rapidjson::SizeType) { return close(); }
    bool EndArray(rapidjson::SizeType) { return close(); }

private:
    // Neither the root nor a field: no value below it is requested.
    static constexpr std::size_t kNowhere = SIZE_MAX - 1;

    // The field that `key` names in the innermost open object. Also kNowhere when the field already
    // has a value, because the first of two equal keys counts.
    std::size_t placeOf(std::string_view key) const {
        const std::size_t parent = parents_[depth_ - 1];
        if (parent == kNowhere) return kNowhere;
        for (std::size_t place = 0; place < fields_.size(); ++place) {
            if (fields_[place].parent != parent || fields_[place].key != key) continue;
            return values_[place].kind == JSONValue::Kind::absent ? place : kNowhere;
        }
        return kNowhere;
    }

    bool keep(JSONValue::Kind kind, std::string_view text = {}, bool boolean = false) {
        if (depth_ == 0) return false;  // the text is a single value
        if (place_ != kNowhere)
            values_[place_] = {kind, boolean, std::string{text}, stream_.Tell()};
        return true;
    }

    bool open(std::size_t parent) {
        if (depth_ == kDeepestNesting) return false;
        parents_[depth_++] = parent;
        place_ = kNowhere;
        return true;
    }

    bool close() {
        --depth_;
        place_ = kNowhere;
        return true;
    }

    std::span<const JSONField> fields_;
    std::span<JSONValue> values_;
    const rapidjson::MemoryStream& stream_;
    std::array<std::size_t, kDeepestNesting> parents_{};
    std::size_t depth_ = 0;
    std::size_t place_ = kNowhere;  // of the next value
    bool isObject_ = false;
};

}  // namespace

CodingResult<void> readJSON(ByteView text, std::span<const JSONField> fields,
                            std::span<JSONValue> values) {
    // The parser counts in 32 bits.
    constexpr std::size_t kLongestText = std::size_t{1} << 30;
    if (text.size() > kLongestText) return std::unexpected{CodingError{}};
    rapidjson::MemoryStream stream{textOf(text).data(), text.size()};
    Collector collector{fields, values, stream};
    rapidjson::Reader reader;
    const bool isComplete = !reader.Parse<kParseFlags>(stream, collector).IsError();
    // The parser takes a NUL within the text for its end.
    if (isComplete && stream.Tell() == text.size()) return {};
    const bool isOtherValue =
        !collector.isObject() && reader.GetParseErrorCode() == rapidjson::kParseErrorTermination;
    return std::unexpected{CodingError{
        isOtherValue ? CodingError::Kind::typeMismatch : CodingError::Kind::dataCorrupted, ""}};
}

}  // namespace quorvane
