#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "CGAffineTransform.h"
#include "CGColor.h"
#include "CGColorSpace.h"
#include "CGContext.h"
#include "CGGradient.h"
#include "CGImage.h"
#include "CGPath.h"
#include "CGSession.h"
