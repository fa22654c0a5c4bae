#pragma once

#include <Foundation/Foundation.h>

enum NSBackingStoreType : NSUInteger { NSBackingStoreBuffered = 2 };
enum NSCompositingOperation : NSUInteger { NSCompositingOperationSourceOver = 2 };
