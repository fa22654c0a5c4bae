#include "AddOnKit/life/AddOnIdentity.hpp"

#include <gtest/gtest.h>

#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

ProcessInfo process() {
    ProcessInfo info;
    info.arguments = {"/bundle/program"};
    info.systemVersion = {.major = 26, .minor = 1, .patch = 0};
    info.bundleProperties = {{"CFBundleShortVersionString", {std::string{"1.4.2"}}}};
    return info;
}

AddOnIdentity make(const ProcessInfo& info) {
    MemoryDefaults defaults;
    return AddOnIdentity::make(info, defaults.table(), [] { return "FRESH"; }, {});
}

TEST(AddOnIdentity, KeepsItsInstallIdentifierAcrossStarts) {
    for (const auto& stored :
         {std::optional<PropertyValue>{}, std::optional{PropertyValue{std::string{}}},
          std::optional{PropertyValue{std::int64_t{7}}}}) {
        MemoryDefaults defaults;
        if (stored) defaults.values.emplace("installID", *stored);
        int made = 0;
        const auto makeUUID = [&] { return "UUID-" + std::to_string(++made); };
        RecordingLog log;
        defaults.refuses = true;
        for (int start = 0; start < 2; ++start) {
            const AddOnIdentity identity = AddOnIdentity::make(
                process(), defaults.table(), makeUUID, {log.sink(), "add-on", "app"});
            EXPECT_EQ(identity.installID, "UUID-1");
            EXPECT_EQ(defaults.synchronizations, 1);
        }
        EXPECT_EQ(log.take(),
                  Lines{"link: the install identifier was not stored: full (error 28)"});
    }
}

TEST(AddOnIdentity, ReadsVersionsAndTheCommandLine) {
    ProcessInfo info = process();
    EXPECT_EQ(make(info).addOnVersion, "1.4.2");
    EXPECT_EQ(make(info).macOSVersion, "26.1.0");
    EXPECT_FALSE(make(info).supersedeOnce.loaded());
    info.bundleProperties["CFBundleShortVersionString"] = {2.0};
    info.arguments.push_back("--installed");
    EXPECT_EQ(make(info).addOnVersion, "0");
    EXPECT_TRUE(make(info).supersedeOnce.isPending());
    EXPECT_NE(make(info), make(process()));
    for (const auto& [major, supported] :
         {std::pair{25, false}, {26, true}, {27, true}, {28, false}, {0, false}}) {
        info.systemVersion.major = major;
        EXPECT_EQ(make(info).supportsThisMacOS, supported) << major;
    }
}

}  // namespace
}  // namespace quorvane
