#pragma once

#include "CFBase.h"

extern "C" {
Boolean CFPreferencesAppSynchronize(CFStringRef applicationID);
}
