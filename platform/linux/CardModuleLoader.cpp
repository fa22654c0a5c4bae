#include "platform/linux/CardModuleLoader.hpp"

#include <dlfcn.h>

#include <utility>

#include "platform/linux/services/HeadlessPlatform.hpp"

namespace quorvane {

CardModuleLoader::CardModuleLoader(std::filesystem::path file, CardModuleServices services,
                                   Entry entry)
    : file_(std::move(file)),
      services_(std::move(services)),
      log_(services_.log, kPlatformSubsystem, "card"),
      entry_(std::move(entry)) {}

const CardWindows* CardModuleLoader::loaded() {
    if (windows_) return &*windows_;
    void* const library = dlopen(file_.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const symbol = library ? dlsym(library, entry_.symbol) : nullptr;
    if (!symbol) {
        const char* const reason = dlerror();
        log_.error("card: the drawing module cannot be loaded: %{public}s",
                   reason ? reason : "its entry is missing");
        return nullptr;
    }
    windows_ = entry_.call(symbol, services_);
    return &*windows_;
}

CardWindows CardModuleLoader::windows() {
    CardWindows windows;
    windows.makeWindow = [this](const WindowSettings& settings,
                                const Screen& screen) -> std::unique_ptr<CardSystemWindow> {
        const CardWindows* const module = loaded();
        return module ? module->makeWindow(settings, screen) : nullptr;
    };
    windows.makeStage = [this](const CardStyle& style) -> std::shared_ptr<CardStage> {
        const CardWindows* const module = loaded();
        return module ? module->makeStage(style) : nullptr;
    };
    windows.measureText = [this](const std::string& text, const FontStyle& font) {
        const CardWindows* const module = loaded();
        return module ? module->measureText(text, font) : 0.0;
    };
    return windows;
}

}  // namespace quorvane
