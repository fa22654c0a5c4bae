#include "drawing/TextDirection.hpp"

#include <algorithm>

#include "platform/Character.hpp"

namespace quorvane {
namespace {

struct Range {
    std::uint32_t first;
    std::uint32_t last;
};

// Characters without a strong direction: digits, punctuation, marks, symbols, emoji. Omits a few
// rare symbols that lie among letters.
constexpr Range kNeutral[] = {
    {0, 0x40},          {0x5B, 0x60},       {0x7B, 0xA9},     {0xAB, 0xB4},     {0xB6, 0xB9},
    {0xBB, 0xBF},       {0xD7, 0xD7},       {0xF7, 0xF7},     {0x2C2, 0x2DF},   {0x300, 0x36F},
    {0x600, 0x60F},     {0x660, 0x66C},     {0x6F0, 0x6F9},   {0x2000, 0x200D}, {0x2010, 0x2070},
    {0x2074, 0x208E},   {0x20A0, 0x2101},   {0x2190, 0x2335}, {0x237B, 0x249B}, {0x24EA, 0x27FF},
    {0x2900, 0x2BFF},   {0x2E00, 0x3004},   {0x3008, 0x3020}, {0x30FB, 0x30FB}, {0xFE00, 0xFE6F},
    {0xFEFF, 0xFF20},   {0xFF3B, 0xFF40},   {0xFF5B, 0xFF65}, {0xFFE0, 0xFFFD}, {0x1F000, 0x1F10F},
    {0x1F260, 0x1FBFF}, {0xE0001, 0xE007F},
};

// The blocks of Hebrew, Arabic and the other right-to-left scripts, and the right-to-left mark.
constexpr Range kRightToLeft[] = {
    {0x590, 0x8FF},   {0x200F, 0x200F},   {0xFB1D, 0xFDFF},
    {0xFE70, 0xFEFC}, {0x10800, 0x10FFF}, {0x1E800, 0x1EFFF},
};

template <std::size_t kCount>
bool contains(const Range (&ranges)[kCount], std::uint32_t code) {
    return std::ranges::any_of(
        ranges, [code](const Range& range) { return code >= range.first && code <= range.last; });
}

}  // namespace

bool readsRightToLeft(std::string_view text, bool otherwise) {
    for (std::size_t place = 0; place < text.size();) {
        const Character character = characterAt(text, place);
        if (character.isValid && !contains(kNeutral, character.code))
            return contains(kRightToLeft, character.code);
        place += character.length;
    }
    return otherwise;
}

}  // namespace quorvane
