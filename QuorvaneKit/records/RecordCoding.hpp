// Reader and writer of whole records, driven by the table of their fields. Only for the coders.
#pragma once

#include <array>
#include <concepts>
#include <span>
#include <utility>

#include "QuorvaneKit/records/RecordFields.hpp"
#include "QuorvaneKit/records/RecordValues.hpp"

namespace quorvane::coding {

template <typename T>
inline constexpr bool kIsRecord = requires {
    RecordFields<T>::kAll;
};

template <typename T>
struct Wrapped {
    using Type = T;
    static constexpr bool isOptional = false;
};
template <typename T>
struct Wrapped<std::optional<T>> {
    using Type = T;
    static constexpr bool isOptional = true;
};

template <typename Member>
using Inner = typename Wrapped<Member>::Type;

// The number of values below a type: its fields and, recursively, theirs.
template <typename T>
constexpr std::size_t valueCount() {
    if constexpr (!kIsRecord<T>) {
        return 0;
    } else {
        return std::apply(
            []<typename... Members>(const RecordField<T, Members>&...) {
                return (std::size_t{0} + ... + (1 + valueCount<Inner<Members>>()));
            },
            RecordFields<T>::kAll);
    }
}

template <typename Record>
constexpr std::size_t listFields(std::span<JSONField> fields, std::size_t place,
                                 std::size_t parent) {
    const auto list = [&]<typename Member>(const RecordField<Record, Member>& field) {
        const std::size_t self = place++;
        fields[self] = {field.key, parent};
        if constexpr (kIsRecord<Inner<Member>>)
            place = listFields<Inner<Member>>(fields, place, self);
    };
    std::apply([&](const auto&... each) { (list(each), ...); }, RecordFields<Record>::kAll);
    return place;
}

template <typename Record>
inline constexpr auto kJSONFields = [] {
    std::array<JSONField, valueCount<Record>()> fields;
    listFields<Record>(fields, 0, kRootObject);
    return fields;
}();

// Values are in the order of kJSONFields<Record>.
template <typename Record>
class RecordReader {
public:
    RecordReader(std::span<JSONValue> values, const ReadBytes& readBytes)
        : values_(values), readBytes_(readBytes) {}

    CodingResult<Record> read() {
        Record record;
        const bool isRead =
            std::apply([&](const auto&... fields) { return (readField(record, fields) && ...); },
                       RecordFields<Record>::kAll);
        if (!isRead) return std::unexpected{error_};
        return record;
    }

private:
    template <typename Member>
    bool readField(Record& record, const RecordField<Record, Member>& field) {
        using Kind = JSONValue::Kind;
        using Value = Inner<Member>;
        JSONValue& value = values_.front();
        const auto below = values_.subspan(1, valueCount<Value>());
        values_ = values_.subspan(1 + below.size());
        if (value.kind == Kind::absent || value.kind == Kind::null) {
            if (Wrapped<Member>::isOptional || field.whenAbsent == WhenAbsent::keepsDefault)
                return true;
            return fail(field.key, value.kind == Kind::absent ? CodingError::Kind::keyNotFound
                                                              : CodingError::Kind::valueNotFound);
        }
        if constexpr (kIsRecord<Value>) {
            if (value.kind != Kind::object) return fail(field.key, CodingError::Kind::typeMismatch);
            auto inner = RecordReader<Value>{below, readBytes_}.read();
            if (!inner) return fail(inner.error().key, inner.error().kind);
            record.*field.member = *std::move(inner);
            return true;
        } else if constexpr (std::same_as<Value, SharedBytes>) {
            if (value.kind != Kind::string) return fail(field.key, CodingError::Kind::typeMismatch);
            record.*field.member = readBytes_(value);
            return record.*field.member || fail(field.key, CodingError::Kind::dataCorrupted);
        } else {
            Value inner{};
            if (const ValueError error = readValue(value, inner)) return fail(field.key, *error);
            record.*field.member = std::move(inner);
            return true;
        }
    }

    bool fail(std::string_view key, CodingError::Kind kind) {
        error_ = {kind, key};
        return false;
    }

    std::span<JSONValue> values_;
    const ReadBytes& readBytes_;
    CodingError error_;
};

template <typename Record>
CodingResult<Record> readRecord(ByteView text, const ReadBytes& readBytes = readBase64) {
    std::array<JSONValue, valueCount<Record>()> values;
    if (const auto done = readJSON(text, kJSONFields<Record>, values); !done)
        return std::unexpected{done.error()};
    return RecordReader<Record>{values, readBytes}.read();
}

// The writer appends to `text`. Returns the key of the first field that JSON cannot represent, if
// any.
template <typename Record>
std::optional<std::string_view> writeFields(JSONWriter& writer, Bytes& text, const Record& record,
                                            const WriteBytes& writeBytes) {
    std::optional<std::string_view> failed;
    const auto writeInner = [&]<typename Value>(std::string_view key, const Value& value) {
        writer.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
        if constexpr (kIsRecord<Value>) {
            failed = writeFields(writer, text, value, writeBytes);
        } else if constexpr (std::same_as<Value, SharedBytes>) {
            // An empty raw value makes the writer add the colon before this value.
            writer.RawValue("", 0, rapidjson::kStringType);
            text.push_back(std::byte{'"'});
            writeBytes(text, value);
            text.push_back(std::byte{'"'});
        } else if (!writeValue(writer, value)) {
            failed = key;
        }
        return !failed;
    };
    const auto write = [&]<typename Member>(const RecordField<Record, Member>& field) {
        const Member& member = record.*field.member;
        if constexpr (Wrapped<Member>::isOptional)
            return !member || writeInner(field.key, *member);
        else
            return writeInner(field.key, member);
    };
    writer.StartObject();
    if (std::apply([&](const auto&... fields) { return (write(fields) && ...); },
                   RecordFields<Record>::kAll))
        writer.EndObject();
    return failed;
}

template <typename Record>
CodingResult<Bytes> writeRecord(const Record& record, const WriteBytes& writeBytes = writeBase64) {
    Bytes text;
    BytesStream stream{text};
    JSONWriter writer{stream};
    if (const auto failed = writeFields(writer, text, record, writeBytes))
        return std::unexpected{CodingError{CodingError::Kind::invalidValue, *failed}};
    return text;
}

}  // namespace quorvane::coding
