// What the compiler for macOS brings along as <objc/runtime.h>, for running on Linux.
#pragma once

#include <objc/objc.h>

typedef struct objc_method* Method;

extern "C" {
Class objc_getClass(const char* name);
SEL sel_registerName(const char* name);
Method class_getInstanceMethod(Class cls, SEL name);
Method class_getClassMethod(Class cls, SEL name);
const char* method_getTypeEncoding(Method method);
}
