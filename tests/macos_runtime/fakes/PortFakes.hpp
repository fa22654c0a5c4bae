// What tests may do to message ports.
#pragma once

#include <cstdint>
#include <optional>

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

struct PortMessage {
    std::int32_t identifier = 0;
    std::string body;
    double sendTimeout = 0;
    double receiveTimeout = 0;
    bool awaitsReply = false;
};
struct PortAnswer {
    std::int32_t status = 0;
    std::optional<std::string> body{};
};
using ServePort = std::function<PortAnswer(const PortMessage&)>;
// What another process would answer under this name, from now on; nothing: nobody serves it.
void servePort(const std::string& name, ServePort answer);
void stopServing(const std::string& name);
// What the data of the last request holds by now.
std::string lastRequest();

// What a client of a port gets that the code under test serves; nothing while no run loop has it.
std::optional<std::string> callPort(const std::string& name, std::int32_t identifier,
                                    const std::string& body);

}  // namespace macrt
