#include "platform/linux/CardModuleLoader.hpp"

#include <dlfcn.h>

#include <utility>

#include "platform/linux/services/HeadlessPlatform.hpp"

namespace quorvane {

Result<void*> functionOfModule(const std::filesystem::path& file, const char* name) {
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (void* const function = library ? dlsym(library, name) : nullptr) return function;
    return std::unexpected{PlatformError{.description = dlerror()}};
}

CardModuleLoader::CardModuleLoader(std::filesystem::path file, CardModuleServices services,
                                   void* session)
    : file_(std::move(file)),
      services_(std::move(services)),
      log_(services_.log, kPlatformSubsystem, "card"),
      session_(session) {}

const CardWindows* CardModuleLoader::loaded() {
    if (windows_) return &*windows_;
    const auto function = functionOfModule(file_, kMakeCardWindows);
    if (!function) {
        log_.error("card: the card module cannot be loaded: %{public}s",
                   function.error().description);
        return nullptr;
    }
    windows_ = reinterpret_cast<MakeCardWindows>(*function)(services_, session_);
    return &*windows_;
}

CardWindows CardModuleLoader::windows() {
    CardWindows windows;
    windows.makeWindow = [this](const CardPlace& place,
                                const Screen& screen) -> std::unique_ptr<CardSystemWindow> {
        const CardWindows* const module = loaded();
        return module ? module->makeWindow(place, screen) : nullptr;
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
