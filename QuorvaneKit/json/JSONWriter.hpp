// Writer of JSON text without white space: RapidJSON's, into bytes.
#pragma once

#include <rapidjson/writer.h>

#include "platform/Bytes.hpp"

namespace quorvane {

// The writer's output, appended to the bytes.
struct BytesStream {
    using Ch = char;
    Bytes& bytes;
    void Put(char letter) { bytes.push_back(static_cast<std::byte>(letter)); }
    void Flush() {}
};

using JSONWriter = rapidjson::Writer<BytesStream>;

}  // namespace quorvane
