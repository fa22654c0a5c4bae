#pragma once

#include "SecRandom.h"
