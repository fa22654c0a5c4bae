#pragma once

#include "CFBase.h"

typedef double CFTimeInterval;
