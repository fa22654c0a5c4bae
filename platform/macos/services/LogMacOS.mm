#include "platform/macos/services/ServicesMacOS.hpp"

#import <os/log.h>

#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/services/OSLogBuffer.hpp"

namespace quorvane {
namespace {

os_log_type_t typeOf(LogLevel level) {
    switch (level) {
        case LogLevel::debug: return OS_LOG_TYPE_DEBUG;
        case LogLevel::info: return OS_LOG_TYPE_INFO;
        case LogLevel::standard: return OS_LOG_TYPE_DEFAULT;
        case LogLevel::error: return OS_LOG_TYPE_ERROR;
        case LogLevel::fault: return OS_LOG_TYPE_FAULT;
    }
    std::unreachable();
}

// Creates each log object once, because the system never frees one.
class LogObjects {
public:
    os_log_t find(std::string_view subsystem, std::string_view category) {
        const std::lock_guard guard{mutex_};
        __strong os_log_t& object = objects_[{std::string{subsystem}, std::string{category}}];
        if (!object)
            object = os_log_create(std::string{subsystem}.c_str(), std::string{category}.c_str());
        return object;
    }

private:
    std::mutex mutex_;
    std::map<std::pair<std::string, std::string>, os_log_t> objects_;  // under mutex_
};

}  // namespace

LogSink makeLogSinkMacOS() {
    return [objects = std::make_shared<LogObjects>()](const LogLine& line) {
        os_log_t log = objects->find(line.subsystem, line.category);
        const os_log_type_t type = typeOf(line.level);
        if (!os_log_type_enabled(log, type)) return;
        OSLogBuffer buffer{line};
        // The call that the system's macros expand to; the macros themselves accept only a literal
        // format.
        _os_log_impl(&__dso_handle, log, type, line.format.data(), buffer.data(), buffer.size());
    };
}

}  // namespace quorvane
