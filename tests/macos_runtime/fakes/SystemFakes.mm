// The application, processes, bundles, files, defaults and services.
#include "tests/macos_runtime/fakes/SystemFakes.hpp"

#import <Security/Security.h>
#include <notify.h>

#include <cstring>

#include "tests/macos_runtime/fakes/Values.hpp"

namespace {
// Shared objects, each made when it is first asked for.
std::map<std::string, id> shared;
int tokens;
std::map<int, std::string> tokenNames;
const macrt::AtReset reset{[] {
    shared.clear();
    tokens = 0;
    tokenNames.clear();
    macrt::answers() = {};
    macrt::defaults().clear();
}};

template <typename Class>
Class* sharedObject(const char* name) {
    __strong id& object = shared[name];
    if (object == nil) object = [Class new];
    return object;
}

BOOL succeedUnless(NSError* failure, NSError** error) {
    if (failure != nil && error != nullptr) *error = failure;
    return failure == nil;
}
}  // namespace

namespace macrt {
SystemAnswers& answers() {
    static auto& only = *new SystemAnswers;
    return only;
}
std::map<std::string, std::map<std::string, id>>& defaults() {
    static auto& only = *new std::map<std::string, std::map<std::string, id>>;
    return only;
}
}  // namespace macrt

@interface NSApplication () <Recorded>
@end
@implementation NSApplication
+ (NSApplication*)sharedApplication {
    return sharedObject<NSApplication>("application");
}
- (NSUserInterfaceLayoutDirection)userInterfaceLayoutDirection {
    return static_cast<NSUserInterfaceLayoutDirection>(macrt::answers().isRightToLeft);
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    return YES;
}
- (void)run {
    if (macrt::answers().whileRunning) macrt::answers().whileRunning();
}
- (void)terminate:(id)sender {
}
@end

@interface NSProcessInfo () <Recorded>
@end
@implementation NSProcessInfo
+ (NSProcessInfo*)processInfo {
    return sharedObject<NSProcessInfo>("process");
}
- (int)processIdentifier {
    return 4711;
}
- (NSOperatingSystemVersion)operatingSystemVersion {
    return macrt::answers().version;
}
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    return [NSObject new];
}
- (void)endActivity:(id<NSObject>)activity {
}
@end

@implementation NSBundle
+ (NSBundle*)mainBundle {
    return sharedObject<NSBundle>("bundle");
}
- (NSURL*)bundleURL {
    return [NSURL fileURLWithPath:macrt::answers().bundlePath];
}
- (NSString*)bundleIdentifier {
    return macrt::answers().bundleIdentifier;
}
- (NSDictionary*)infoDictionary {
    return macrt::answers().infoDictionary;
}
- (NSString*)localizedStringForKey:(NSString*)key value:(NSString*)value table:(NSString*)table {
    return macrt::makeString("~" + macrt::textOf(key));
}
@end

@interface NSRunningApplication () <Recorded>
@property(readwrite, getter=isTerminated) BOOL terminated;
@property(readwrite) pid_t processIdentifier;
@property(readwrite, copy) NSDate* launchDate;
@end
@implementation NSRunningApplication
static NSRunningApplication* applicationOf(const macrt::FakeRunningCopy& copy) {
    NSRunningApplication* const application = [NSRunningApplication new];
    application->_processIdentifier = copy.pid;
    application->_launchDate = copy.launchDate;
    application->_terminated = copy.isTerminated;
    return application;
}
+ (NSRunningApplication*)currentApplication {
    return applicationOf(macrt::answers().copies.front());
}
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:(NSString*)identifier {
    NSMutableArray* const all = [NSMutableArray new];
    for (const auto& copy : macrt::answers().copies) [all addObject:applicationOf(copy)];
    return all;
}
+ (instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid {
    for (const auto& copy : macrt::answers().copies)
        if (copy.pid == pid) return applicationOf(copy);
    return nil;
}
- (BOOL)terminate {
    return YES;
}
@end

NSFileAttributeKey const NSFilePosixPermissions = @"NSFilePosixPermissions";

@interface NSFileManager () <Recorded>
@end
@implementation NSFileManager
+ (NSFileManager*)defaultManager {
    return sharedObject<NSFileManager>("files");
}
- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory
                   inDomains:(NSSearchPathDomainMask)domainMask {
    NSString* const path = macrt::answers().applicationSupport;
    return path == nil ? [NSArray new] : @[ [NSURL fileURLWithPath:path] ];
}
- (BOOL)createDirectoryAtURL:(NSURL*)url
    withIntermediateDirectories:(BOOL)createIntermediates
                     attributes:(NSDictionary*)attributes
                          error:(NSError**)error {
    return succeedUnless(macrt::answers().fileError, error);
}
- (BOOL)setAttributes:(NSDictionary*)attributes
         ofItemAtPath:(NSString*)path
                error:(NSError**)error {
    return succeedUnless(macrt::answers().fileError, error);
}
- (BOOL)removeItemAtURL:(NSURL*)URL error:(NSError**)error {
    if (!succeedUnless(macrt::answers().fileError, error)) return NO;
    const std::string place = macrt::textOf(URL.path);
    std::erase_if(macrt::files(), [&](const auto& file) {
        return file.first == place || file.first.starts_with(place + "/");
    });
    return YES;
}
- (BOOL)copyItemAtURL:(NSURL*)srcURL toURL:(NSURL*)dstURL error:(NSError**)error {
    return succeedUnless(macrt::answers().fileError, error);
}
- (BOOL)fileExistsAtPath:(NSString*)path {
    return macrt::files().contains(macrt::textOf(path));
}
- (NSURL*)containerURLForSecurityApplicationGroupIdentifier:(NSString*)groupIdentifier {
    return [NSURL fileURLWithPath:macrt::makeString("/Groups/" + macrt::textOf(groupIdentifier))];
}
@end

@implementation NSPropertyListSerialization
+ (id)propertyListWithData:(NSData*)data
                   options:(NSPropertyListReadOptions)opt
                    format:(NSPropertyListFormat*)format
                     error:(NSError**)error {
    return macrt::answers().propertyList;
}
@end

@interface NSUserDefaults () <Recorded>
@end
@implementation NSUserDefaults {
    std::string domain_;
}
+ (NSUserDefaults*)standardUserDefaults {
    return sharedObject<NSUserDefaults>("defaults");
}
- (instancetype)initWithSuiteName:(NSString*)suitename {
    if (!macrt::answers().hasSuites) return nil;
    domain_ = macrt::textOf(suitename);
    return self;
}
- (id)objectForKey:(NSString*)defaultName {
    auto& domain = macrt::defaults()[domain_];
    const auto found = domain.find(macrt::textOf(defaultName));
    return found == domain.end() ? nil : found->second;
}
- (void)setObject:(id)value forKey:(NSString*)defaultName {
    macrt::defaults()[domain_][macrt::textOf(defaultName)] = value;
}
- (void)removeObjectForKey:(NSString*)defaultName {
    macrt::defaults()[domain_].erase(macrt::textOf(defaultName));
}
- (void)removePersistentDomainForName:(NSString*)domainName {
}
@end

@interface NSFileHandle () <Recorded>
@end
@implementation NSFileHandle
- (NSData*)readDataToEndOfFileAndReturnError:(NSError**)error {
    const std::string& output = macrt::answers().launchOutput;
    return [NSData dataWithBytes:output.data() length:output.size()];
}
@end

@interface NSPipe ()
@property(readwrite, retain) NSFileHandle* fileHandleForReading;
@end
@implementation NSPipe
+ (NSPipe*)pipe {
    NSPipe* const pipe = [NSPipe new];
    pipe.fileHandleForReading = [NSFileHandle new];
    return pipe;
}
@end

@interface NSTask () <Recorded>
@end
@implementation NSTask
- (int)terminationStatus {
    return macrt::answers().launchStatus;
}
- (BOOL)launchAndReturnError:(NSError**)error {
    return succeedUnless(macrt::answers().launchError, error);
}
- (void)waitUntilExit {
}
@end

@implementation NSUUID
+ (instancetype)UUID {
    return [NSUUID new];
}
- (NSString*)UUIDString {
    return @"0F0E0D0C-0B0A-4908-8706-050403020100";
}
@end

@interface SMAppService () <Recorded>
@end
@implementation SMAppService
+ (SMAppService*)mainAppService {
    return sharedObject<SMAppService>("login item");
}
- (SMAppServiceStatus)status {
    return static_cast<SMAppServiceStatus>(macrt::answers().loginItem);
}
- (BOOL)registerAndReturnError:(NSError**)error {
    return succeedUnless(macrt::answers().loginItemError, error);
}
- (BOOL)unregisterAndReturnError:(NSError**)error {
    return succeedUnless(macrt::answers().loginItemError, error);
}
@end

extern "C" {

const SecRandomRef kSecRandomDefault = nullptr;
int SecRandomCopyBytes(SecRandomRef, size_t count, void* bytes) {
    if (macrt::answers().randomStatus == 0) std::memset(bytes, 0xA5, count);
    return macrt::answers().randomStatus;
}

Boolean CFPreferencesAppSynchronize(CFStringRef applicationID) {
    macrt::note("synchronize " + macrt::textOf((__bridge NSString*)applicationID));
    return macrt::answers().canSynchronize;
}

CFDictionaryRef CGSessionCopyCurrentDictionary() {
    return (__bridge_retained CFDictionaryRef)macrt::answers().session;
}

uint32_t notify_register_check(const char* name, int* out_token) {
    macrt::note(std::string{"notify register "} + name);
    if (macrt::answers().notifyStatus != 0) return macrt::answers().notifyStatus;
    tokenNames[++tokens] = name;
    *out_token = tokens;
    return 0;
}

uint32_t notify_get_state(int token, uint64_t* state64) {
    if (!tokenNames.contains(token)) return 2;
    *state64 = macrt::answers().notifyStates[tokenNames[token]];
    return 0;
}

uint32_t notify_cancel(int token) {
    macrt::note("notify cancel " + std::to_string(token));
    return tokenNames.erase(token) == 1 ? 0 : 2;
}
}
