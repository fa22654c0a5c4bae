// What tests may do to drawing. Every letter is 10 points wide, every symbol 20 by 10.
#pragma once

#import <CoreGraphics/CoreGraphics.h>

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

// With one reference, which is the caller's.
CGImageRef makePicture(const std::string& name, double width, double height)
    __attribute__((cf_returns_retained));
void setKnownSymbols(std::vector<std::string> names);

}  // namespace macrt
