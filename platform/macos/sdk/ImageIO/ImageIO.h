#pragma once

#include "CGImageProperties.h"
#include "CGImageSource.h"
