#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#import <Foundation/Foundation.h>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/services/InstallationMacOS.hpp"

namespace quorvane {
namespace {

NSArray<NSString*>* stringsFrom(const std::vector<std::string>& texts) {
    NSMutableArray<NSString*>* strings = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const std::string& text : texts) [strings addObject:stringFrom(text)];
    return strings;
}

Result<OpenCommandEnd> openApplication(const std::filesystem::path& bundle,
                                       const std::vector<std::string>& arguments) {
    // A new instance, not brought to the front.
    std::vector<std::string> words{"-n", "-g", bundle.string()};
    if (!arguments.empty()) {
        words.emplace_back("--args");
        words.insert(words.end(), arguments.begin(), arguments.end());
    }
    NSPipe* pipe = [NSPipe pipe];
    NSTask* task = [[NSTask alloc] init];
    task.executableURL = urlFrom("/usr/bin/open");
    task.arguments = stringsFrom(words);
    task.standardOutput = pipe;
    task.standardError = pipe;
    NSError* error = nil;
    if (![task launchAndReturnError:&error]) return std::unexpected{errorFrom(error)};
    // Read to the end before waiting, because the launcher cannot exit while the pipe is full.
    NSData* output = [pipe.fileHandleForReading readDataToEndOfFileAndReturnError:nil];
    [task waitUntilExit];
    std::string text{textOf(bytesFrom(output))};
    while (text.ends_with('\n')) text.pop_back();
    return OpenCommandEnd{.status = task.terminationStatus, .output = std::move(text)};
}

}  // namespace

OpenApplication makeOpenApplicationMacOS() { return openApplication; }

}  // namespace quorvane
