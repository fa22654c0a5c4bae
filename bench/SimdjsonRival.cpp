#include "bench/JSONRivals.hpp"

#if __has_include(<simdjson.h>)
#include <simdjson.h>

#include "bench/PlainBase64.hpp"

namespace quorvane {
namespace {

std::size_t decode(std::string_view text) {
    static simdjson::dom::parser parser;
    const simdjson::dom::element state = parser.parse(text.data(), text.size());
    const std::string_view artwork = state["track"]["artworkData"];
    return decodePlainBase64(artwork).size();
}

}  // namespace

std::optional<JSONRival> simdjsonRival() { return JSONRival{"simdjson", decode, nullptr}; }

}  // namespace quorvane

#else

namespace quorvane {
std::optional<JSONRival> simdjsonRival() { return std::nullopt; }
}  // namespace quorvane

#endif
