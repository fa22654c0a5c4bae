// The texts of the bundle in the user's language.
#pragma once

#include <string>

namespace quorvane {

std::string localizedMacOS(const std::string& key);
bool isRightToLeftMacOS();

}  // namespace quorvane
