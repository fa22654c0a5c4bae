// The tables and functions that the card needs of this edition.
#pragma once

#include "drawing/CardWindows.hpp"
#include "drawing/Image.hpp"
#include "drawing/Screens.hpp"
#include "platform/Clock.hpp"
#include "platform/DynamicLoader.hpp"

namespace quorvane {

// The core lifts the windows through the window server's private interface.
CardWindows makeCardWindowsMacOS(const Clock& clock);
// The system's loader, for that interface.
DynamicLoader makeDynamicLoaderMacOS();
// No screen has areas to keep clear, because the lock screen keeps its own areas free.
Screens makeScreensMacOS();
// Decodes immediately, and keeps no more of a picture than a card shows.
ImageRef decodeImageMacOS(ByteView encoded);
// The texts of the bundle in the user's language.
std::string localizedMacOS(const std::string& key);
bool isRightToLeftMacOS();

}  // namespace quorvane
