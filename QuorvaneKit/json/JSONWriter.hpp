// Writer of JSON text without white space.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/Bytes.hpp"

namespace quorvane {

// Appends to `text`, which must outlive it. The caller is responsible for the order of keys and
// values.
class JSONWriter {
public:
    explicit JSONWriter(Bytes& text);
    ~JSONWriter();
    JSONWriter(const JSONWriter&) = delete;
    JSONWriter& operator=(const JSONWriter&) = delete;

    void beginObject();
    void endObject();
    void key(std::string_view name);
    void boolean(bool value);
    void integer(std::int64_t value);
    // Returns false, and writes nothing, for a number that is not finite.
    [[nodiscard]] bool number(double value);
    // Returns false, and writes nothing, for text that is not UTF-8.
    [[nodiscard]] bool string(std::string_view value);
    // A string whose characters `append` adds to the text directly; none may need an escape.
    void plainString(const std::function<void(Bytes& text)>& append);

private:
    struct Writer;
    Bytes& text_;
    std::unique_ptr<Writer> writer_;
};

}  // namespace quorvane
