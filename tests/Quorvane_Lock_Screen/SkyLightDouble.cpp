// A library with the window server's entry points, for tests. Built once whole and once with a
// symbol left out. It writes what it is asked into a text that the test reads, and answers with
// values that the test sets.

#include <cstdint>
#include <string>

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED std::string skyLightCalls;
EXPORTED std::uint64_t skyLightSpace;
std::string skyLightCalls;
std::uint64_t skyLightSpace = 0;

EXPORTED std::int32_t SLSMainConnectionID() {
    skyLightCalls += "connection;";
    return 77;
}

EXPORTED std::uint64_t SLSSpaceCreate(std::int32_t connection, std::int32_t type,
                                      const void* options) {
    skyLightCalls += "create " + std::to_string(connection) + " " + std::to_string(type) +
                     (options == nullptr ? " null;" : " options;");
    return skyLightSpace;
}

EXPORTED std::int32_t SLSSpaceSetAbsoluteLevel(std::int32_t connection, std::uint64_t space,
                                               std::int32_t level) {
    skyLightCalls += "level " + std::to_string(connection) + " " + std::to_string(space) + " " +
                     std::to_string(level) + ";";
    return 1001;
}

// Arrays are single numbers here.
#ifndef WITHOUT_SHOW
EXPORTED std::int32_t SLSShowSpaces(std::int32_t connection, const void* spaces) {
    skyLightCalls += "show " + std::to_string(connection) + " " +
                     std::to_string(*static_cast<const std::uint64_t*>(spaces)) + ";";
    return 1002;
}
#endif

EXPORTED std::int32_t SLSSpaceAddWindowsAndRemoveFromSpaces(std::int32_t connection,
                                                            std::uint64_t space,
                                                            const void* windows,
                                                            std::int32_t options) {
    skyLightCalls += "add " + std::to_string(connection) + " " + std::to_string(space) + " " +
                     std::to_string(*static_cast<const std::uint64_t*>(windows)) + " " +
                     std::to_string(options) + ";";
    return 1003;
}
