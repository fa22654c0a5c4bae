#pragma once

#include "CFBase.h"
#include "CFCGTypes.h"
