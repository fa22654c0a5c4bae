#pragma once

#include "CFAttributedString.h"
#include "CFBase.h"
#include "CFCGTypes.h"
#include "CFData.h"
#include "CFDate.h"
#include "CFDictionary.h"
#include "CFMessagePort.h"
#include "CFNotificationCenter.h"
#include "CFNumber.h"
#include "CFPreferences.h"
#include "CFRunLoop.h"
