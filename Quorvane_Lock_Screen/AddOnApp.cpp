#include "Quorvane_Lock_Screen/AddOnApp.hpp"

namespace quorvane {

AddOnApp::AddOnApp(const LivePlatform& platform) : coordinator_(AddOnCoordinator::make(platform)) {}

void AddOnApp::applicationDidFinishLaunching() { coordinator_->start(); }

void AddOnApp::applicationWillTerminate() { coordinator_->willTerminate(); }

}  // namespace quorvane
