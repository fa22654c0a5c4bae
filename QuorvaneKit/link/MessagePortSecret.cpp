#include "QuorvaneKit/link/MessagePortSecret.hpp"

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "platform/Wipe.hpp"

namespace quorvane {
namespace {

std::optional<std::filesystem::path> secretFile(const FileStore& files) {
    const auto container = files.containerOfGroup(std::string{kAppGroup});
    if (!container) return std::nullopt;
    return *container / MessagePortSecret::kFileName;
}

}  // namespace

std::optional<Bytes> MessagePortSecret::make(const FillRandom& fillRandom, const FileStore& files,
                                             const LogSink& sink) {
    const Logger log{sink, kKitLogSubsystem, "MessagePortSecret"};
    Bytes secret(MessagePortWire::kSecretLength);
    if (const auto filled = fillRandom(secret); !filled) {
        log.error("Failed to generate IPC secret (SecRandomCopyBytes status %d)", filled.error());
        return std::nullopt;
    }
    const auto file = secretFile(files);
    if (!file) {
        log.error("App Group container unavailable; cannot persist IPC secret");
        wipe(secret);
        return std::nullopt;
    }
    std::optional<Bytes> kept;
    for (const auto& write : {files.createAtomically, files.writeAtomically}) {
        const auto written = write(*file, secret);
        if (!written) log.error("Failed to write IPC secret: %s", written.error().description);
        kept = written ? checked(read(files)) : std::nullopt;
        if (kept || !written) break;
    }
    wipe(secret);
    return kept;
}

std::optional<Bytes> MessagePortSecret::read(const FileStore& files) {
    const auto file = secretFile(files);
    if (!file) return std::nullopt;
    auto contents = files.read(*file);
    if (!contents) return std::nullopt;
    return *std::move(contents);
}

std::optional<Bytes> MessagePortSecret::checked(std::optional<Bytes> contents) {
    if (contents && contents->size() != MessagePortWire::kSecretLength) {
        wipe(*contents);
        contents.reset();
    }
    return contents;
}

}  // namespace quorvane
