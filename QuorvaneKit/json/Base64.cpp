#include "QuorvaneKit/json/Base64.hpp"

#include <array>
#include <cstdint>
#include <cstring>

namespace quorvane {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint32_t kNoLetter = 0x8000'0000;

// Each letter's six bits at their position in a group, one table per position. Four look-ups and
// three ORs decode a group; an invalid letter sets the top bit.
using GroupTables = std::array<std::array<std::uint32_t, 256>, 4>;

constexpr GroupTables makeGroupTables() {
    GroupTables tables{};
    for (std::size_t place = 0; place < 4; ++place) {
        tables[place].fill(kNoLetter);
        for (std::uint32_t value = 0; value < kAlphabet.size(); ++value) {
            const auto letter = static_cast<unsigned char>(kAlphabet[value]);
            tables[place][letter] = value << (18 - 6 * place);
        }
    }
    return tables;
}

// Two letters for each value of twelve bits.
constexpr std::array<char, 2 * 4096> makePairTable() {
    std::array<char, 2 * 4096> table{};
    for (std::size_t value = 0; value < 4096; ++value) {
        table[2 * value] = kAlphabet[value >> 6];
        table[2 * value + 1] = kAlphabet[value & 63];
    }
    return table;
}

constexpr GroupTables kGroupTables = makeGroupTables();
constexpr std::array<char, 2 * 4096> kPairTable = makePairTable();

}  // namespace

std::size_t base64Length(std::size_t byteCount) { return (byteCount + 2) / 3 * 4; }

void appendBase64(Bytes& text, ByteView bytes) {
    const std::size_t before = text.size();
    text.resize(before + base64Length(bytes.size()));
    const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
    auto* out = reinterpret_cast<char*>(text.data() + before);
    std::size_t left = bytes.size();
    for (; left >= 3; left -= 3, in += 3, out += 4) {
        const std::uint32_t group = static_cast<std::uint32_t>(in[0]) << 16 |
                                    static_cast<std::uint32_t>(in[1]) << 8 | in[2];
        std::memcpy(out, &kPairTable[2 * (group >> 12)], 2);
        std::memcpy(out + 2, &kPairTable[2 * (group & 0xFFF)], 2);
    }
    if (left == 0) return;
    const std::uint32_t group = static_cast<std::uint32_t>(in[0]) << 16 |
                                (left == 2 ? static_cast<std::uint32_t>(in[1]) << 8 : 0);
    std::memcpy(out, &kPairTable[2 * (group >> 12)], 2);
    out[2] = left == 2 ? kAlphabet[group >> 6 & 63] : '=';
    out[3] = '=';
}

std::optional<Bytes> decodeBase64(std::string_view text) {
    if (text.size() % 4 != 0) return std::nullopt;
    Bytes bytes(text.size() / 4 * 3);
    const auto* in = reinterpret_cast<const unsigned char*>(text.data());
    const auto* const end = in + text.size();
    auto* out = reinterpret_cast<unsigned char*>(bytes.data());
    for (; in != end; in += 4, out += 3) {
        const std::uint32_t group = kGroupTables[0][in[0]] | kGroupTables[1][in[1]] |
                                    kGroupTables[2][in[2]] | kGroupTables[3][in[3]];
        if ((group & kNoLetter) != 0) break;
        out[0] = static_cast<unsigned char>(group >> 16);
        out[1] = static_cast<unsigned char>(group >> 8);
        out[2] = static_cast<unsigned char>(group);
    }
    if (in == end) return bytes;

    // Only the last group may be padded.
    if (end - in != 4 || in[3] != '=') return std::nullopt;
    const bool hasTwoBytes = in[2] != '=';
    const std::uint32_t group = kGroupTables[0][in[0]] | kGroupTables[1][in[1]] |
                                (hasTwoBytes ? kGroupTables[2][in[2]] : 0);
    if ((group & kNoLetter) != 0) return std::nullopt;
    out[0] = static_cast<unsigned char>(group >> 16);
    if (hasTwoBytes) out[1] = static_cast<unsigned char>(group >> 8);
    bytes.resize(bytes.size() - (hasTwoBytes ? 1 : 2));
    return bytes;
}

}  // namespace quorvane
