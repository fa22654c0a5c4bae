// Bytes as base64 text, the standard alphabet with padding.
#pragma once

#include <optional>
#include <string_view>

#include "platform/Bytes.hpp"

namespace quorvane {

std::size_t base64Length(std::size_t byteCount);
void appendBase64(Bytes& text, ByteView bytes);

// Returns nullopt unless the whole text is groups of four characters, the last padded if needed.
// Ignores the bits left over by padding. Allocates three quarters of the text's size.
std::optional<Bytes> decodeBase64(std::string_view text);

}  // namespace quorvane
