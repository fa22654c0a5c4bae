#pragma once

#include "CTLine.h"
#include "CTStringAttributes.h"
