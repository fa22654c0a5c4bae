#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#include "NSGeometry.h"
#include "NSNotification.h"
#include "NSObjCRuntime.h"
