#pragma once

#include "CAAnimation.h"
#include "CAGradientLayer.h"
#include "CALayer.h"
#include "CAShapeLayer.h"
#include "CATransaction.h"
#include "CATransform3D.h"
