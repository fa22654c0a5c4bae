#include "AddOnKit/life/AddOnIdentity.hpp"

#include <gtest/gtest.h>

#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

struct AddOnIdentityTest : testing::Test {
    AddOnIdentityTest() {
        info.systemVersion = {.major = 26, .minor = 1, .patch = 0};
        info.bundleProperties = {{"CFBundleShortVersionString", {std::string{"1.4.2"}}}};
    }
    AddOnIdentity make() {
        const auto makeUUID = [this] { return "UUID-" + std::to_string(++made); };
        return AddOnIdentity::make(info, defaults.table(), makeUUID, {log.sink(), "add-on", "app"});
    }

    ProcessInfo info;
    MemoryDefaults defaults;
    RecordingLog log;
    int made = 0;
};

TEST_F(AddOnIdentityTest, KeepsItsInstallIdentifierAcrossStarts) {
    defaults.refuses = true;
    for (const PropertyValue& invalid : {PropertyValue{std::string{}}, {std::int64_t{7}}}) {
        defaults.values["installID"] = invalid;
        const std::string installID = make().installID;
        EXPECT_EQ(installID, "UUID-" + std::to_string(made));
        EXPECT_EQ(make().installID, installID);
        EXPECT_EQ(log.take(),
                  Lines{"link: the install identifier was not stored: full (error 28)"});
    }
    EXPECT_EQ(defaults.synchronizations, 2);
}

TEST_F(AddOnIdentityTest, ReadsVersionsAndTheCommandLine) {
    EXPECT_EQ(make().addOnVersion, "1.4.2");
    EXPECT_EQ(make().macOSVersion, "26.1.0");
    EXPECT_FALSE(make().supersedeOnce.loaded());
    info.bundleProperties["CFBundleShortVersionString"] = {2.0};
    info.arguments = {"add-on", "--installed"};
    EXPECT_EQ(make().addOnVersion, "0");
    EXPECT_TRUE(make().supersedeOnce.isPending());
    for (const auto& [major, supported] :
         {std::pair{25, false}, {26, true}, {27, true}, {28, false}}) {
        info.systemVersion.major = major;
        EXPECT_EQ(make().supportsThisMacOS, supported) << major;
    }
}

}  // namespace
}  // namespace quorvane
