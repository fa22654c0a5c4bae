#include "platform/macos/files/FilesMacOS.hpp"

#import <Foundation/Foundation.h>
#import <Security/Security.h>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

constexpr NSInteger kFileExists = 516;  // NSFileWriteFileExistsError

std::optional<std::filesystem::path> containerOfGroup(const std::string& group) {
    NSFileManager* files = NSFileManager.defaultManager;
    // The system returns a URL for every name, even if the folder is missing or forbidden to this
    // program.
    NSURL* url = [files containerURLForSecurityApplicationGroupIdentifier:stringFrom(group)];
    if (![files createDirectoryAtURL:url withIntermediateDirectories:YES attributes:nil error:nil])
        return std::nullopt;
    return pathFrom(url);
}

Result<Bytes> read(const std::filesystem::path& path) {
    @autoreleasepool {
        NSError* error = nil;
        NSData* data = [NSData dataWithContentsOfURL:urlFrom(path) options:0 error:&error];
        if (!data) return std::unexpected{errorFrom(error)};
        return bytesFrom(data);
    }
}

Result<void> writeAtomically(const std::filesystem::path& path, ByteView contents) {
    @autoreleasepool {
        NSError* error = nil;
        if (![dataFrom(contents) writeToURL:urlFrom(path) options:NSDataWritingAtomic error:&error])
            return std::unexpected{errorFrom(error)};
        if (![NSFileManager.defaultManager setAttributes:@{
                NSFilePosixPermissions : @0600
            }
                                            ofItemAtPath:urlFrom(path).path
                                                   error:&error])
            return std::unexpected{errorFrom(error)};
        return {};
    }
}

// Uses a hard link, because writeToURL has no option that is atomic and keeps an existing file.
Result<void> createAtomically(const std::filesystem::path& path, ByteView contents) {
    @autoreleasepool {
        auto temporary = path;
        temporary += "." + makeUUIDMacOS();
        if (auto written = writeAtomically(temporary, contents); !written) return written;
        NSFileManager* files = NSFileManager.defaultManager;
        NSError* error = nil;
        const BOOL isLinked = [files linkItemAtURL:urlFrom(temporary)
                                             toURL:urlFrom(path)
                                             error:&error];
        [files removeItemAtURL:urlFrom(temporary) error:nil];
        if (isLinked || error.code == kFileExists) return {};
        return std::unexpected{errorFrom(error)};
    }
}

}  // namespace

FileStore makeFileStoreMacOS() {
    return {.containerOfGroup = containerOfGroup,
            .read = read,
            .writeAtomically = writeAtomically,
            .createAtomically = createAtomically};
}

FillRandom makeFillRandomMacOS() {
    return [](std::span<std::byte> bytes) -> std::expected<void, int> {
        const int status = SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data());
        if (status != 0) return std::unexpected{status};
        return {};
    };
}

std::string makeUUIDMacOS() { return textFrom([NSUUID UUID].UUIDString); }

}  // namespace quorvane
