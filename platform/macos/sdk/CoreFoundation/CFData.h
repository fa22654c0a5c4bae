#pragma once

#include "CFBase.h"

typedef const struct __CFData* CFDataRef;
