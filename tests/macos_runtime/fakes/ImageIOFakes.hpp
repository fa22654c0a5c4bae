// What tests may do to ImageIO.
#pragma once

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

// What every picture's header says from now on, nil for nothing; and whether its pixels decode.
void setPictureProperties(NSDictionary* properties, bool isDecodable);

}  // namespace macrt
