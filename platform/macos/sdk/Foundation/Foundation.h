#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <dispatch/dispatch.h>

#include "NSArray.h"
#include "NSAttributedString.h"
#include "NSBundle.h"
#include "NSData.h"
#include "NSDate.h"
#include "NSDictionary.h"
#include "NSDistributedNotificationCenter.h"
#include "NSError.h"
#include "NSFileHandle.h"
#include "NSFileManager.h"
#include "NSGeometry.h"
#include "NSNotification.h"
#include "NSObjCRuntime.h"
#include "NSOperation.h"
#include "NSPathUtilities.h"
#include "NSProcessInfo.h"
#include "NSPropertyList.h"
#include "NSString.h"
#include "NSTask.h"
#include "NSURL.h"
#include "NSUUID.h"
#include "NSUserDefaults.h"
#include "NSValue.h"
