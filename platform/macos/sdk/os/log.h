#pragma once

#include <objc/NSObject.h>
#include <os/object.h>
#include <stdint.h>

@protocol OS_os_log <NSObject>
@end
typedef NSObject<OS_os_log>* os_log_t;

typedef uint8_t os_log_type_t;
enum : os_log_type_t {
    OS_LOG_TYPE_DEFAULT = 0x00,
    OS_LOG_TYPE_INFO = 0x01,
    OS_LOG_TYPE_DEBUG = 0x02,
    OS_LOG_TYPE_ERROR = 0x10,
    OS_LOG_TYPE_FAULT = 0x11
};

extern "C" {
os_log_t os_log_create(const char* subsystem, const char* category)
    __attribute__((ns_returns_retained));
bool os_log_type_enabled(os_log_t oslog, os_log_type_t type);
void _os_log_impl(void* dso, os_log_t log, os_log_type_t type, const char* format, uint8_t* buf,
                  uint32_t size);
extern struct mach_header_64 __dso_handle;
}
