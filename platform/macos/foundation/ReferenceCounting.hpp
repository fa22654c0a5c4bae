// Included by every Objective-C++ file, so that none is compiled without reference counting.
#pragma once

#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif
