// The unified log: lines are noted with their format and the size of their arguments, whose bytes
// OSLogBufferTest compares.
#import <os/log.h>

#include "tests/macos_runtime/fakes/Answers.hpp"

@interface FakeLog : NSObject <OS_os_log> {
@public
    std::string name;
}
@end
@implementation FakeLog
@end

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
    const std::string arguments = std::to_string(buf[1]) + " in " + std::to_string(size);
    macrt::note("log " + ((FakeLog*)log)->name + " " + std::to_string(type) + " " + format + " " +
                arguments);
}
}
