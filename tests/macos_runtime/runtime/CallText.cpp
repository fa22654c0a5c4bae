// A saved call as text: its arguments are found by the method's type encoding, in the places where
// the x86-64 System V convention puts them.
#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>

#include "tests/macos_runtime/runtime/Counting.hpp"

namespace macrt {
namespace {

struct Extent {
    std::size_t size = 0;
    std::size_t alignment = 1;
};

// Told of each leaf of a type and of each brace, with its offset. '?' is one that cannot be shown.
using Visit = std::function<void(char code, std::size_t offset)>;

std::size_t roundedUp(std::size_t value, std::size_t to) { return (value + to - 1) / to * to; }

std::string_view afterBracket(std::string_view types) {
    int depth = 0;
    std::size_t place = 0;
    do {
        if (std::string_view{"{(["}.find(types[place]) != std::string_view::npos) ++depth;
        if (std::string_view{"})]"}.find(types[place]) != std::string_view::npos) --depth;
        ++place;
    } while (depth > 0 && place < types.size());
    return types.substr(place);
}

std::size_t sizeOfLeaf(char code) {
    switch (code) {
        case 'c':
        case 'C':
        case 'B': return 1;
        case 's':
        case 'S': return 2;
        case 'i':
        case 'I':
        case 'f': return 4;
        case 'v': return 0;
        default: return 8;
    }
}

Extent walk(std::string_view& types, std::size_t offset, const Visit& visit);

Extent walkStructure(std::string_view& types, std::size_t offset, const Visit& visit) {
    Extent whole;
    visit('{', offset);
    types.remove_prefix(types.find('=') + 1);
    while (types.front() != '}') {
        std::string_view ahead = types;
        const Extent member = walk(ahead, 0, [](char, std::size_t) {});
        const std::size_t place = roundedUp(whole.size, member.alignment);
        walk(types, offset + place, visit);
        whole = {place + member.size, std::max(whole.alignment, member.alignment)};
    }
    visit('}', offset);
    types.remove_prefix(1);
    return {roundedUp(whole.size, whole.alignment), whole.alignment};
}

// Visits one type and moves past it.
Extent walk(std::string_view& types, std::size_t offset, const Visit& visit) {
    constexpr std::string_view kQualifiers = "rnNoORVA";
    types.remove_prefix(std::min(types.find_first_not_of(kQualifiers), types.size()));
    char code = types.front();
    if (code == '{') return walkStructure(types, offset, visit);
    if (code == '^') {
        // What the system's C interfaces call by such names is an object of a fake.
        if (types.starts_with("^{CG") || types.starts_with("^{__C")) code = '@';
        types.remove_prefix(1);
        types.remove_prefix(std::min(types.find_first_not_of("^rA"), types.size()));
        const bool isBracket = std::string_view{"{(["}.find(types.front()) != types.npos;
        // A pointer to a function says "^?".
        types = isBracket ? afterBracket(types) : types.substr(1);
    } else if (code == '(' || code == '[') {
        types = afterBracket(types);
        code = '?';
    } else {
        types.remove_prefix(types.starts_with("@?") ? 2 : 1);
    }
    visit(code, offset);
    const std::size_t size = sizeOfLeaf(code);
    return {size, std::max<std::size_t>(size, 1)};
}

template <typename T>
T load(const unsigned char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

std::string numberText(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.15g", value);
    return text.data();
}

std::string valueText(char code, const unsigned char* bytes) {
    switch (code) {
        case 'B': return *bytes != 0 ? "YES" : "NO";
        case 'c': return std::to_string(load<signed char>(bytes));
        case 'C': return std::to_string(*bytes);
        case 's': return std::to_string(load<short>(bytes));
        case 'S': return std::to_string(load<unsigned short>(bytes));
        case 'i': return std::to_string(load<int>(bytes));
        case 'I': return std::to_string(load<unsigned>(bytes));
        case 'l':
        case 'q': return std::to_string(load<long>(bytes));
        case 'L':
        case 'Q': return std::to_string(load<unsigned long>(bytes));
        case 'f': {
            // As few digits as a float has: 0.35 and not 0.349999994039536.
            std::array<char, 32> text{};
            std::snprintf(text.data(), text.size(), "%g", load<float>(bytes));
            return text.data();
        }
        case 'd': return numberText(load<double>(bytes));
        case ':': return load<const char*>(bytes) ? load<const char*>(bytes) : "nil";
        case '*': {
            const auto* const text = load<const char*>(bytes);
            return text ? '"' + std::string{text} + '"' : "nil";
        }
        case '@':
        case '#': return describe(load<Object*>(bytes));
        default: return load<void*>(bytes) ? "pointer" : "nil";
    }
}

std::string textOf(std::string_view types, const unsigned char* bytes) {
    std::string text;
    walk(types, 0, [&](char code, std::size_t offset) {
        if (code != '}' && !text.empty() && text.back() != '{') text += ", ";
        text += code == '{' || code == '}' ? std::string{code} : valueText(code, bytes + offset);
    });
    return text;
}

// Takes the arguments from their places one after the other.
class ArgumentReader {
public:
    ArgumentReader(const Frame& frame, std::size_t integersTaken)
        : frame_(frame), integers_(integersTaken) {}

    std::string next(std::string_view& types) {
        const std::string_view type = types;
        std::array<bool, 2> isVector{true, true};
        const Extent extent = walk(types, 0, [&](char code, std::size_t offset) {
            if (code == '?') isLost_ = true;
            const bool isReal = code == 'd' || code == 'f' || code == '{' || code == '}';
            if (offset < 16 && !isReal) isVector[offset / 8] = false;
        });
        // What follows one of unknown size is lost as well.
        if (isLost_) return "?";
        const std::size_t words = roundedUp(extent.size, 8) / 8;
        return words <= 2 && fits(words, isVector) ? fromRegisters(type, words, isVector)
                                                   : fromStack(type, words);
    }

private:
    bool fits(std::size_t words, const std::array<bool, 2>& isVector) const {
        const auto inVectors =
            static_cast<std::size_t>(std::count(isVector.begin(), isVector.begin() + words, true));
        return vectors_ + inVectors <= 8 && integers_ + words - inVectors <= 6;
    }
    std::string fromRegisters(std::string_view type, std::size_t words,
                              const std::array<bool, 2>& isVector) {
        std::array<unsigned char, 16> bytes{};
        for (std::size_t i = 0; i < words; ++i) {
            const void* const from = isVector[i]
                                         ? static_cast<const void*>(frame_.vectors[vectors_++])
                                         : &frame_.integers[integers_++];
            std::memcpy(bytes.data() + 8 * i, from, 8);
        }
        return textOf(type, bytes.data());
    }
    std::string fromStack(std::string_view type, std::size_t words) {
        const auto* const stack =
            reinterpret_cast<const unsigned char*>(&frame_) + offsetof(Frame, stack);
        return textOf(type, stack + 8 * std::exchange(stacked_, stacked_ + words));
    }

    const Frame& frame_;
    std::size_t integers_;
    std::size_t vectors_ = 0;
    std::size_t stacked_ = 0;
    bool isLost_ = false;
};

// An offset follows each type.
void skipOffset(std::string_view& types) {
    types.remove_prefix(std::min(types.find_first_not_of("0123456789-"), types.size()));
}

}  // namespace

std::string describeCall(Frame& frame, bool isResultInMemory, const char* encoded) {
    const std::size_t first = isResultInMemory ? 1 : 0;
    std::string_view selector = reinterpret_cast<Selector>(frame.integers[first + 1]);
    if (selector.find(':') == std::string_view::npos) return std::string{selector};
    std::string_view types = encoded;
    for (int i = 0; i < 3; ++i) {  // the result, the receiver, the selector
        walk(types, 0, [](char, std::size_t) {});
        skipOffset(types);
    }
    ArgumentReader reader{frame, first + 2};
    std::string text;
    for (std::size_t colon = 0;
         !types.empty() && (colon = selector.find(':')) != std::string_view::npos;
         selector.remove_prefix(colon + 1)) {
        if (!text.empty()) text += ' ';
        text += std::string{selector.substr(0, colon + 1)} + reader.next(types);
        skipOffset(types);
    }
    return text;
}

std::string nameOf(Object* object) {
    if (object == nullptr) return "nil";
    const ClassFacts& facts = *object->isa->facts;
    if (!isCounted(object)) return facts.name;
    return facts.name + "#" + std::to_string(headerOf(object).number);
}

std::string describe(Object* object) {
    if (object == nullptr || isClassObject(object)) return nameOf(object);
    if (isDead(object)) return "<dead " + nameOf(object) + ">";
    void* const mark = objc_autoreleasePoolPush();
    auto* const text = send<Object*>(object, "description");
    std::string result = send<const char*>(text, "UTF8String");
    // A string describes itself.
    if (text == object) result = "@\"" + result + "\"";
    objc_autoreleasePoolPop(mark);
    return result;
}

}  // namespace macrt
