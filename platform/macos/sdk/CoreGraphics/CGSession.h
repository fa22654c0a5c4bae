#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {
CFDictionaryRef CGSessionCopyCurrentDictionary(void);
}
