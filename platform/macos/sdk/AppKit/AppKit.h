#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <Foundation/Foundation.h>

#include "NSApplication.h"
#include "NSResponder.h"
