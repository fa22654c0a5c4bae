// A saved call as text: its arguments are found by the method's type encoding, in the places where
// the x86-64 System V convention puts them.
#include <array>
#include <cstdio>

#include "tests/macos_runtime/runtime/Counting.hpp"
#include "tests/macos_runtime/runtime/TestRuntime.hpp"

namespace macrt {
namespace {

// Takes one type off the front: "d", "@?", "^{CGPath=}", "{CGPoint=dd}".
std::string_view takeType(std::string_view& types) {
    types.remove_prefix(types.find_first_not_of("rnNoORVA"));  // const and the like
    std::size_t end = types.find_first_not_of("^rA");
    int depth = 0;
    do {
        depth += (types[end] == '{') - (types[end] == '}');
        ++end;
    } while (depth > 0);
    if (types.substr(end - 1).starts_with("@?")) ++end;
    const std::string_view type = types.substr(0, end);
    types.remove_prefix(end);
    return type;
}

bool isStructure(std::string_view type) { return type.front() == '{'; }

std::string_view membersOf(std::string_view structure) {
    const std::size_t begin = structure.find('=') + 1;
    return structure.substr(begin, structure.size() - begin - 1);
}

std::size_t wordsOf(std::string_view type) {
    if (!isStructure(type)) return 1;
    std::size_t words = 0;
    for (std::string_view members = membersOf(type); !members.empty();)
        words += wordsOf(takeType(members));
    return words;
}

template <typename T>
T load(const unsigned char* bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

std::string numberText(const char* format, double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::string leafText(std::string_view type, const unsigned char* bytes) {
    // What the system's C interfaces call by such names is an object of a fake.
    if (type.starts_with("^{CG") || type.starts_with("^{__C")) type = "@";
    switch (type.front()) {
        case 'B': return *bytes != 0 ? "YES" : "NO";
        case 'C': return std::to_string(*bytes);
        case 'i': return std::to_string(load<int>(bytes));
        case 'I': return std::to_string(load<unsigned>(bytes));
        case 'l':
        case 'q': return std::to_string(load<long>(bytes));
        case 'L':
        case 'Q': return std::to_string(load<unsigned long>(bytes));
        // As few digits as a float has: 0.35 and not 0.349999994039536.
        case 'f': return numberText("%g", load<float>(bytes));
        case 'd': return numberText("%.15g", load<double>(bytes));
        case ':': return load<const char*>(bytes);
        case '@':
        case '#': return describe(load<Object*>(bytes));
        case '^': return load<void*>(bytes) ? "pointer" : "nil";
        default: fault("an argument that cannot be shown: " + std::string{type}); return "?";
    }
}

// Takes the arguments from their places one after the other. Structures consist of doubles, as all
// that the adapters hand over do.
class ArgumentReader {
public:
    ArgumentReader(const Frame& frame, std::size_t integersTaken)
        : frame_(frame), integers_(integersTaken) {}

    std::string next(std::string_view type) {
        const std::size_t words = wordsOf(type);
        const bool isReal = isStructure(type) || type == "d" || type == "f";
        if (!isReal && integers_ < 6) return valueText(type, &frame_.integers[integers_++]);
        if (isReal && words <= 2 && vectors_ + words <= 8) {
            std::array<double, 2> values{};
            for (std::size_t i = 0; i < words; ++i) values[i] = frame_.vectors[vectors_++][0];
            return valueText(type, values.data());
        }
        const unsigned char* const place = frame_.stack + 8 * stacked_;
        stacked_ += words;
        return valueText(type, place);
    }

private:
    const Frame& frame_;
    std::size_t integers_;
    std::size_t vectors_ = 0;
    std::size_t stacked_ = 0;
};

void skipOffset(std::string_view& types) {
    types.remove_prefix(std::min(types.find_first_not_of("0123456789"), types.size()));
}

}  // namespace

std::string valueText(std::string_view types, const void* value) {
    const std::string_view type = takeType(types);
    const auto* bytes = static_cast<const unsigned char*>(value);
    if (!isStructure(type)) return leafText(type, bytes);
    std::string text;
    for (std::string_view members = membersOf(type); !members.empty();) {
        const std::string_view member = takeType(members);
        text += (text.empty() ? "" : ", ") + valueText(member, bytes);
        bytes += 8 * wordsOf(member);
    }
    return "{" + text + "}";
}

std::string describeCall(Frame& frame, bool isResultInMemory, const char* encoded) {
    const std::size_t first = isResultInMemory ? 1 : 0;
    std::string_view selector = reinterpret_cast<Selector>(frame.integers[first + 1]);
    if (selector.find(':') == std::string_view::npos) return std::string{selector};
    std::string_view types = encoded;
    for (int i = 0; i < 3; ++i) {  // the result, the receiver, the selector
        takeType(types);
        skipOffset(types);
    }
    ArgumentReader reader{frame, first + 2};
    std::string text;
    for (; !selector.empty(); selector.remove_prefix(selector.find(':') + 1)) {
        if (!text.empty()) text += ' ';
        text += selector.substr(0, selector.find(':') + 1);
        text += reader.next(takeType(types));
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
