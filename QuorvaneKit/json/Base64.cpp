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

class Decoder {
public:
    Decoder(std::string_view text, Base64Form form)
        : next_(text.data()), end_(text.data() + text.size()), form_(form) {
        bytes_.resize(text.size() / 4 * 3);
    }

    std::optional<Bytes> run() {
        auto* out = reinterpret_cast<unsigned char*>(bytes_.data());
        auto* const begin = out;
        while (true) {
            out = decodePlainGroups(out);
            if (next_ == end_) break;
            const int count = decodeOneGroup(out);
            if (count == 0) return std::nullopt;
            out += count;
        }
        bytes_.resize(static_cast<std::size_t>(out - begin));
        return std::move(bytes_);
    }

private:
    // The hot path: decodes while all four characters of a group are letters.
    unsigned char* decodePlainGroups(unsigned char* out) {
        const auto* in = reinterpret_cast<const unsigned char*>(next_);
        const auto* const end = reinterpret_cast<const unsigned char*>(end_);
        while (end - in >= 4) {
            const std::uint32_t group = kGroupTables[0][in[0]] | kGroupTables[1][in[1]] |
                                        kGroupTables[2][in[2]] | kGroupTables[3][in[3]];
            if ((group & kNoLetter) != 0) break;
            out[0] = static_cast<unsigned char>(group >> 16);
            out[1] = static_cast<unsigned char>(group >> 8);
            out[2] = static_cast<unsigned char>(group);
            in += 4;
            out += 3;
        }
        next_ = reinterpret_cast<const char*>(in);
        return out;
    }

    // Decodes a group with an escape in it, or the padded last one. Returns its byte count, 0 if
    // invalid.
    int decodeOneGroup(unsigned char* out) {
        std::uint32_t group = 0;
        std::size_t letters = 0;
        for (; letters < 4; ++letters) {
            if (form_ == Base64Form::escapedSolidus && end_ - next_ >= 2 && next_[0] == '\\' &&
                next_[1] == '/')
                ++next_;
            if (next_ == end_ || *next_ == '=') break;
            const auto character = static_cast<unsigned char>(*next_);
            group |= kGroupTables[letters][character];
            ++next_;
        }
        if ((group & kNoLetter) != 0) return 0;
        if (letters < 4) {
            const std::string_view padding{next_, end_};
            if (letters < 2 || padding != std::string_view{"=="}.substr(letters - 2)) return 0;
            next_ = end_;
        }
        const int count = static_cast<int>(letters) - 1;
        for (int index = 0; index < count; ++index)
            out[index] = static_cast<unsigned char>(group >> (16 - 8 * index));
        return count;
    }

    const char* next_;
    const char* end_;
    Base64Form form_;
    Bytes bytes_;
};

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

std::optional<Bytes> decodeBase64(std::string_view text, Base64Form form) {
    return Decoder{text, form}.run();
}

}  // namespace quorvane
