#include "QuorvaneKit/json/JSONWriter.hpp"

#include <rapidjson/writer.h>

#include <cmath>

#include "platform/Character.hpp"

namespace quorvane {
namespace {

struct BytesStream {
    using Ch = char;
    Bytes& bytes;
    void Put(char letter) { bytes.push_back(static_cast<std::byte>(letter)); }
    void Flush() {}
};

}  // namespace

struct JSONWriter::Writer {
    explicit Writer(Bytes& text) : stream{text}, json{stream} {}
    BytesStream stream;
    rapidjson::Writer<BytesStream> json;
};

JSONWriter::JSONWriter(Bytes& text) : text_(text), writer_(std::make_unique<Writer>(text)) {}
JSONWriter::~JSONWriter() = default;

void JSONWriter::beginObject() { writer_->json.StartObject(); }
void JSONWriter::endObject() { writer_->json.EndObject(); }
void JSONWriter::key(std::string_view name) {
    writer_->json.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
}
void JSONWriter::boolean(bool value) { writer_->json.Bool(value); }
void JSONWriter::integer(std::int64_t value) { writer_->json.Int64(value); }
bool JSONWriter::number(double value) {
    return std::isfinite(value) && writer_->json.Double(value);
}

bool JSONWriter::string(std::string_view value) {
    return isValidUTF8(value) &&
           writer_->json.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

void JSONWriter::plainString(const std::function<void(Bytes& text)>& append) {
    // An empty raw value makes the writer add the comma or colon before this value.
    writer_->json.RawValue("", 0, rapidjson::kStringType);
    writer_->stream.Put('"');
    append(text_);
    writer_->stream.Put('"');
}

}  // namespace quorvane
