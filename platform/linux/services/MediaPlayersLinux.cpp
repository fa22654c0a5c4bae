#include "platform/MediaPlayers.hpp"

#include "platform/FetchPicture.hpp"
#include "platform/linux/bus/MprisPlayers.hpp"
#include "platform/linux/fetch/FetchProcess.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"

namespace quorvane {

MediaPlayers makeLiveMediaPlayers(const LiveServices& services) {
    auto players = std::make_shared<MprisPlayers>(HeadlessPlatform::of(services).sessionBus,
                                                  services.clock, services.mainThread);
    players->start();
    return {.list = [players]() -> const std::vector<MediaPlayer>& { return players->list(); },
            .observe = [players](auto handler) { return players->observe(std::move(handler)); },
            .refresh = [players](const std::string& name) { players->refresh(name); },
            .call = [players](const std::string& name,
                              const std::string& method) { players->call(name, method); },
            .set = [players](const std::string& name, const std::string& property,
                             const PropertyValue& value) { players->set(name, property, value); },
            .raise = [players](const std::string& name) { players->raise(name); }};
}

FetchPicture makeLiveFetchPicture(const LiveServices& services, std::filesystem::path program) {
    return makeFetchPicture(HeadlessPlatform::of(services).loop, std::move(program));
}

}  // namespace quorvane
