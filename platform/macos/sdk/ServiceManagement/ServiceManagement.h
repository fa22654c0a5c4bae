#pragma once

#include "SMAppService.h"
