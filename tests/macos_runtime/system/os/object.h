// What the compiler for macOS brings along as <os/object.h>, for running on Linux.
#pragma once

#include <objc/NSObject.h>

#define OS_OBJECT_RETURNS_RETAINED __attribute__((ns_returns_retained))
#define OS_OBJECT_DECL(name) \
    @protocol OS_            \
    ##name<NSObject> @end    \
    typedef NSObject<OS_##name>* name##_t
