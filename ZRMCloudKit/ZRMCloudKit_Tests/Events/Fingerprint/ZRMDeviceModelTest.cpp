#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMDeviceModel.h"

namespace {

using testing::ElementsAreArray;

// The identifiers of one family: its name, and the two numbers of each.
std::vector<std::string> family(const std::string& name, const std::vector<std::string>& numbers) {
    std::vector<std::string> identifiers;
    for (const auto& each : numbers) {
        identifiers.push_back(name + each);
    }
    return identifiers;
}

const std::vector<std::vector<std::string>> kFamilies{
    {"i386", "x86_64", "arm64"},
    family("iPod", {"1,1", "2,1", "3,1", "4,1", "5,1", "7,1"}),
    family("iPhone",
           {"1,1",  "1,2",  "2,1",  "3,1",  "3,3",  "4,1",  "5,1",  "5,2",  "5,3",  "5,4",
            "6,1",  "6,2",  "7,1",  "7,2",  "8,1",  "8,2",  "8,4",  "9,1",  "9,3",  "9,2",
            "9,4",  "10,1", "10,4", "10,2", "10,5", "10,3", "10,6", "11,2", "11,4", "11,6",
            "11,8", "12,1", "12,3", "12,5", "12,8", "13,1", "13,2", "13,3", "13,4", "14,4",
            "14,5", "14,2", "14,3", "14,6", "14,7", "14,8", "15,2", "15,3"}),
    family("iPad", {"1,1",  "2,1",  "2,2",  "2,3",   "2,4",   "3,1",   "3,2",   "3,3",  "3,4",
                    "3,5",  "3,6",  "6,11", "6,12",  "7,5",   "7,6",   "7,11",  "7,12", "11,6",
                    "11,7", "12,1", "12,2", "13,18", "13,19", "4,1",   "4,2",   "4,3",  "5,3",
                    "5,4",  "11,3", "11,4", "13,1",  "13,2",  "13,16", "13,17", "2,5",  "2,6",
                    "2,7",  "4,4",  "4,5",  "4,6",   "4,7",   "4,8",   "4,9",   "5,1",  "5,2",
                    "11,1", "11,2", "14,1", "14,2",  "6,7",   "6,8",   "6,3",   "6,4",  "7,3",
                    "7,4",  "7,1",  "7,2",  "8,1",   "8,2",   "8,3",   "8,4",   "8,5",  "8,6",
                    "8,7",  "8,8",  "8,9",  "8,10",  "8,11",  "8,12",  "13,4",  "13,5", "13,6",
                    "13,7", "13,8", "13,9", "13,10", "13,11", "14,3",  "14,4",  "14,5", "14,6"}),
    family("AppleTV", {"5,3", "6,2"}),
    family("AudioAccessory", {"1,1", "5,1"}),
};

TEST(ZRMDeviceModel, KnowsTheIdentifiersOfEachFamilyInOrder) {
    std::vector<std::string> expected;
    for (const auto& identifiers : kFamilies) {
        expected.insert(expected.end(), identifiers.begin(), identifiers.end());
    }
    std::vector<std::string> identifiers;
    for (const auto& row : zrm_deviceModelTable()) {
        identifiers.emplace_back(row.identifier);
    }
    EXPECT_THAT(identifiers, ElementsAreArray(expected));
}

TEST(ZRMDeviceModel, HasOneHundredAndFortyTwoIdentifiersEachOnce) {
    std::set<std::string_view> identifiers;
    for (const auto& row : zrm_deviceModelTable()) {
        identifiers.insert(row.identifier);
        EXPECT_FALSE(row.name.empty()) << row.identifier;
        EXPECT_EQ(zrm_deviceModel(row.identifier), row.name);
    }
    EXPECT_EQ(zrm_deviceModelTable().size(), 142U);
    EXPECT_EQ(identifiers.size(), 142U);
}

TEST(ZRMDeviceModel, IsMadeOnce) {
    EXPECT_EQ(zrm_deviceModelTable().data(), zrm_deviceModelTable().data());
}

// Every name there is, with the identifiers that share it.
TEST(ZRMDeviceModel, GivesTheVariantsOfAModelOneName) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> names{
        {"Simulator", {"i386", "x86_64", "arm64"}},
        {"iPod 1", {"iPod1,1"}},
        {"iPod 2", {"iPod2,1"}},
        {"iPod 3", {"iPod3,1"}},
        {"iPod 4", {"iPod4,1"}},
        {"iPod 5", {"iPod5,1"}},
        {"iPod 6", {"iPod7,1"}},
        {"iPhone", {"iPhone1,1"}},
        {"iPhone 3G", {"iPhone1,2"}},
        {"iPhone 3GS", {"iPhone2,1"}},
        {"iPhone 4", {"iPhone3,1", "iPhone3,3"}},
        {"iPhone 4s", {"iPhone4,1"}},
        {"iPhone 5", {"iPhone5,1", "iPhone5,2"}},
        {"iPhone 5c", {"iPhone5,3", "iPhone5,4"}},
        {"iPhone 5s", {"iPhone6,1", "iPhone6,2"}},
        {"iPhone 6", {"iPhone7,2"}},
        {"iPhone 6 Plus", {"iPhone7,1"}},
        {"iPhone 6s", {"iPhone8,1"}},
        {"iPhone 6s Plus", {"iPhone8,2"}},
        {"iPhone SE", {"iPhone8,4"}},
        {"iPhone 7", {"iPhone9,1", "iPhone9,3"}},
        {"iPhone 7 Plus", {"iPhone9,2", "iPhone9,4"}},
        {"iPhone 8", {"iPhone10,1", "iPhone10,4"}},
        {"iPhone 8 Plus", {"iPhone10,2", "iPhone10,5"}},
        {"iPhone X", {"iPhone10,3", "iPhone10,6"}},
        {"iPhone XS", {"iPhone11,2"}},
        {"iPhone XS Max", {"iPhone11,4", "iPhone11,6"}},
        {"iPhone XR", {"iPhone11,8"}},
        {"iPhone 11", {"iPhone12,1"}},
        {"iPhone 11 Pro", {"iPhone12,3"}},
        {"iPhone 11 Pro Max", {"iPhone12,5"}},
        {"iPhone SE (2nd generation)", {"iPhone12,8"}},
        {"iPhone 12 Mini", {"iPhone13,1"}},
        {"iPhone 12", {"iPhone13,2"}},
        {"iPhone 12 Pro", {"iPhone13,3"}},
        {"iPhone 12 Pro Max", {"iPhone13,4"}},
        {"iPhone 13 Mini", {"iPhone14,4"}},
        {"iPhone 13", {"iPhone14,5"}},
        {"iPhone 13 Pro", {"iPhone14,2"}},
        {"iPhone 13 Pro Max", {"iPhone14,3"}},
        {"iPhone SE (3rd generation)", {"iPhone14,6"}},
        {"iPhone 14", {"iPhone14,7"}},
        {"iPhone 14 Plus", {"iPhone14,8"}},
        {"iPhone 14 Pro", {"iPhone15,2"}},
        {"iPhone 14 Pro Max", {"iPhone15,3"}},
        {"iPad", {"iPad1,1"}},
        {"iPad 2", {"iPad2,1", "iPad2,2", "iPad2,3", "iPad2,4"}},
        {"iPad 3", {"iPad3,1", "iPad3,2", "iPad3,3"}},
        {"iPad 4", {"iPad3,4", "iPad3,5", "iPad3,6"}},
        {"iPad 5", {"iPad6,11", "iPad6,12"}},
        {"iPad 6", {"iPad7,5", "iPad7,6"}},
        {"iPad 7", {"iPad7,11", "iPad7,12"}},
        {"iPad 8", {"iPad11,6", "iPad11,7"}},
        {"iPad 9", {"iPad12,1", "iPad12,2"}},
        {"iPad 10", {"iPad13,18", "iPad13,19"}},
        {"iPad Air", {"iPad4,1", "iPad4,2", "iPad4,3"}},
        {"iPad Air 2", {"iPad5,3", "iPad5,4"}},
        {"iPad Air 3", {"iPad11,3", "iPad11,4"}},
        {"iPad Air 4", {"iPad13,1", "iPad13,2"}},
        {"iPad Air 5", {"iPad13,16", "iPad13,17"}},
        {"iPad Mini", {"iPad2,5", "iPad2,6", "iPad2,7"}},
        {"iPad Mini 2", {"iPad4,4", "iPad4,5", "iPad4,6"}},
        {"iPad Mini 3", {"iPad4,7", "iPad4,8", "iPad4,9"}},
        {"iPad Mini 4", {"iPad5,1", "iPad5,2"}},
        {"iPad Mini 5", {"iPad11,1", "iPad11,2"}},
        {"iPad Mini 6", {"iPad14,1", "iPad14,2"}},
        {"iPad Pro 12.9-inch", {"iPad6,7", "iPad6,8"}},
        {"iPad Pro 9.7-inch", {"iPad6,3", "iPad6,4"}},
        {"iPad Pro 10.5-inch", {"iPad7,3", "iPad7,4"}},
        {"iPad Pro 12.9-inch (2nd generation)", {"iPad7,1", "iPad7,2"}},
        {"iPad Pro 11-inch", {"iPad8,1", "iPad8,2", "iPad8,3", "iPad8,4"}},
        {"iPad Pro 12.9-inch (3rd generation)", {"iPad8,5", "iPad8,6", "iPad8,7", "iPad8,8"}},
        {"iPad Pro 11-inch (2nd generation)", {"iPad8,9", "iPad8,10"}},
        {"iPad Pro 12.9-inch (4th generation)", {"iPad8,11", "iPad8,12"}},
        {"iPad Pro 11-inch (3rd generation)", {"iPad13,4", "iPad13,5", "iPad13,6", "iPad13,7"}},
        {"iPad Pro 12.9-inch (5th generation)", {"iPad13,8", "iPad13,9", "iPad13,10", "iPad13,11"}},
        {"iPad Pro 11-inch (4th generation)", {"iPad14,3", "iPad14,4"}},
        {"iPad Pro 12.9-inch (6th generation)", {"iPad14,5", "iPad14,6"}},
        {"Apple TV HD", {"AppleTV5,3"}},
        {"Apple TV 4K", {"AppleTV6,2"}},
        {"HomePod", {"AudioAccessory1,1"}},
        {"HomePod Mini", {"AudioAccessory5,1"}},
    };
    std::size_t identifiers = 0;
    for (const auto& [name, ofThatName] : names) {
        for (const auto& identifier : ofThatName) {
            EXPECT_EQ(zrm_deviceModel(identifier), name) << identifier;
            ++identifiers;
        }
    }
    EXPECT_EQ(identifiers, zrm_deviceModelTable().size());
}

TEST(ZRMDeviceModel, GivesAnUnknownIdentifierTheNameOfTheFirstFamilyItContains) {
    EXPECT_EQ(zrm_deviceModel("iPod99,1"), "iPod Touch");
    EXPECT_EQ(zrm_deviceModel("iPad99,1"), "iPad");
    EXPECT_EQ(zrm_deviceModel("iPhone99,1"), "iPhone");
    EXPECT_EQ(zrm_deviceModel("new iPhone"), "iPhone");
    EXPECT_EQ(zrm_deviceModel("iPhone and iPad"), "iPad");
    EXPECT_EQ(zrm_deviceModel("iPhone, iPad and iPod"), "iPod Touch");
}

TEST(ZRMDeviceModel, IsUnknownForEverythingElse) {
    for (const auto* identifier :
         {"Watch9,9", "", "iphone10,3", "IPAD1,1", "AppleTV99,1", "aarch64"}) {
        EXPECT_EQ(zrm_deviceModel(identifier), "Unknown") << identifier;
    }
}

}  // namespace
