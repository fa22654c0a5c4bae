// The sound server's volumes, for players that have none.
#include <memory>
#include <utility>

#include "platform/LivePlatform.hpp"
#include "platform/SoundServer.hpp"
#include "platform/linux/sound/PulseConnection.hpp"

namespace quorvane {
namespace {

using Handler = std::function<void(SoundLevels)>;

// The handler runs on the main thread while its handle is held.
Handle observe(const MainThread& mainThread, std::weak_ptr<PulseConnection>& current,
               Handler handler) {
    const auto held = std::make_shared<Handler>(std::move(handler));
    const auto onLevels = [post = mainThread.post, weak = std::weak_ptr{held}](SoundLevels levels) {
        post([weak, levels = std::move(levels)] {
            if (const auto known = weak.lock()) (*known)(levels);
        });
    };
    const PulseLibrary* const library = PulseLibrary::get();
    if (!library) {
        onLevels({});
        return Handle{[held] {}};
    }
    const auto connection = std::make_shared<PulseConnection>(*library, onLevels);
    current = connection;
    return Handle{[held, connection] {}};
}

}  // namespace

SoundServer makeLiveSoundServer(const LiveServices& services) {
    const auto current = std::make_shared<std::weak_ptr<PulseConnection>>();
    return {.observe = [current, mainThread = services.mainThread](
                           Handler handler) { return observe(mainThread, *current, handler); },
            .setVolume =
                [current](std::optional<std::uint32_t> stream, double volume) {
                    if (const auto connection = current->lock())
                        connection->setVolume(stream, volume);
                }};
}

}  // namespace quorvane
