// The main application's end of the link in its own process.
#pragma once

#include <csignal>

#include "QuorvaneKit/link/MessagePortServer.hpp"
#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "bench/ServerProcess.hpp"
#include "platform/linux/ports/MessagePortsLinux.hpp"

namespace quorvane {

class LinkServer {
public:
    // `makeHandlers` is called in the serving process.
    LinkServer(int processor, const std::filesystem::path& folder,
               const std::function<MessagePortHandlers()>& makeHandlers)
        : process_(processor, [&](const auto& ready) {
              MessagePortServer server{
                  {.log = {}, .openPort = makeOpenPortLinux(folder), .nameCurrentThread = {}}};
              server.handlers = makeHandlers();
              server.expectedSecret = secret();
              server.start();
              ready();
              while (true) pause();
          }) {}

    static Bytes secret() { return Bytes(MessagePortWire::kSecretLength, std::byte{7}); }
    pid_t pid() const { return process_.pid(); }

private:
    ServerProcess process_;
};

}  // namespace quorvane
