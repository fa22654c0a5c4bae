// The unified log: lines are noted as a viewer would show them.
#import <os/log.h>

#include <cstring>

#include "tests/macos_runtime/fakes/Answers.hpp"

@interface FakeLog : NSObject <OS_os_log> {
@public
    std::string name;
}
@end
@implementation FakeLog
@end

namespace {
// Takes the arguments from the buffer one after the other.
class Arguments {
public:
    Arguments(const uint8_t* buffer, uint32_t size) : next_(buffer + 2), end_(buffer + size) {}

    std::string take(std::string_view letters) {
        if (end_ - next_ < 2 || end_ - next_ < 2 + next_[1]) return "<missing>";
        const uint8_t kind = next_[0];
        const uint8_t size = next_[1];
        const uint8_t* const value = next_ + 2;
        next_ = value + size;
        if ((kind & 0xF0) == 0x20) return text(kind & 0xF, value);
        return number(letters, value, size);
    }
    bool isAtEnd() const { return next_ == end_; }

private:
    // Text without a mark is private as well.
    static std::string text(int privacy, const uint8_t* value) {
        const char* pointer = nullptr;
        std::memcpy(&pointer, value, sizeof pointer);
        return privacy == 2 ? pointer : "<private>";
    }
    static std::string number(std::string_view letters, const uint8_t* value, uint8_t size) {
        if (letters.ends_with('f')) {
            double real = 0;
            std::memcpy(&real, value, sizeof real);
            return std::to_string(real);
        }
        long long whole = 0;
        std::memcpy(&whole, value, size);
        if (size == 4 && letters.ends_with('d')) whole = static_cast<int>(whole);
        if (letters.starts_with("{bool}")) return whole != 0 ? "true" : "false";
        return letters.ends_with('u') ? std::to_string(static_cast<unsigned long long>(whole))
                                      : std::to_string(whole);
    }

    const uint8_t* next_;
    const uint8_t* end_;
};

std::string rendered(std::string_view format, const uint8_t* buffer, uint32_t size) {
    Arguments arguments{buffer, size};
    std::string line;
    while (!format.empty()) {
        const std::size_t percent = format.find('%');
        line += format.substr(0, percent);
        if (percent == std::string_view::npos) break;
        format.remove_prefix(percent + 1);
        const std::size_t end =
            format.find_first_of("sduf", format.starts_with('{') ? format.find('}') : 0);
        line += arguments.take(format.substr(0, end + 1));
        format.remove_prefix(end + 1);
    }
    return line + (arguments.isAtEnd() ? "" : " <more arguments than placeholders>");
}
}  // namespace

extern "C" {

os_log_t os_log_create(const char* subsystem, const char* category) {
    FakeLog* const log = [FakeLog new];
    log->name = std::string{subsystem} + ":" + category;
    macrt::note("log of " + log->name);
    return log;
}

bool os_log_type_enabled(os_log_t, os_log_type_t type) {
    return type != OS_LOG_TYPE_DEBUG || macrt::answered<bool>(nil, "", "debug log", true);
}

void _os_log_impl(void*, os_log_t log, os_log_type_t type, const char* format, uint8_t* buf,
                  uint32_t size) {
    macrt::note("log " + ((FakeLog*)log)->name + " " + std::to_string(type) + " " +
                rendered(format, buf, size));
}
}
