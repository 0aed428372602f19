#include <gtest/gtest.h>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMManagedObjectModel.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsSchema.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

ZRMResult<ZRMManagedObjectModel> read(std::string_view json) {
    return zrm_managedObjectModelFromJson(zrm_dataFromText(json));
}

}  // namespace

TEST(ZRMManagedObjectModel, ShippedModelHoldsTheFiveAttributesWithTheirTypes) {
    const auto model = zrm_managedObjectModelFromJson(zrm_shippedStatisticsModel());
    ASSERT_TRUE(model.hasValue());
    EXPECT_EQ(model.value().version, 1);
    ASSERT_EQ(model.value().entities.size(), 1U);
    const ZRMEntityDescription expected{"ZRMStatisticEntity",
                                        {{"jws", ZRMAttributeType::Binary},
                                         {"storeTimestamp", ZRMAttributeType::Double},
                                         {"lastTryTimestamp", ZRMAttributeType::Double},
                                         {"activeDays", ZRMAttributeType::Integer16},
                                         {"priority", ZRMAttributeType::Integer16}}};
    EXPECT_EQ(model.value().entities.front(), expected);
    EXPECT_TRUE(zrm_modelHoldsStatistics(model.value()));
}

TEST(ZRMManagedObjectModel, ModelWithoutAnAttributeOfTheQueueDoesNotHoldStatistics) {
    EXPECT_FALSE(zrm_modelHoldsStatistics({}));
    EXPECT_FALSE(zrm_modelHoldsStatistics(
        {1, {{"ZRMStatisticEntity", {{"jws", ZRMAttributeType::Binary}}}}}));
}

TEST(ZRMManagedObjectModel, ModelWithAnotherTypeForAnAttributeDoesNotHoldStatistics) {
    auto model = zrm_managedObjectModelFromJson(zrm_shippedStatisticsModel()).value();
    model.entities[0].attributes[4].type = ZRMAttributeType::Double;
    EXPECT_FALSE(zrm_modelHoldsStatistics(model));
}

struct MalformedModel {
    const char* name;
    const char* json;
};

class ZRMMalformedModelTest : public ::testing::TestWithParam<MalformedModel> {};

TEST_P(ZRMMalformedModelTest, IsRefused) {
    EXPECT_FALSE(read(GetParam().json).hasValue());
}

INSTANTIATE_TEST_SUITE_P(
    ZRMManagedObjectModel, ZRMMalformedModelTest,
    ::testing::Values(
        MalformedModel{"Empty", ""}, MalformedModel{"NoJson", "{"},
        MalformedModel{"NoObject", "[]"}, MalformedModel{"NoVersion", R"({"entities": []})"},
        MalformedModel{"NoEntities", R"({"version": 1})"},
        MalformedModel{"VersionZero", R"({"version": 0, "entities": []})"},
        MalformedModel{"VersionTooLarge", R"({"version": 2147483648, "entities": []})"},
        MalformedModel{"VersionText", R"({"version": "1", "entities": []})"},
        MalformedModel{"VersionTwice", R"({"version": 1, "version": 2, "entities": []})"},
        MalformedModel{"EntityNoObject", R"({"version": 1, "entities": [1]})"},
        MalformedModel{"EntityWithoutName", R"({"version": 1, "entities": [{"attributes": []}]})"},
        MalformedModel{"EntityWithoutAttributes", R"({"version": 1, "entities": [{"name": "A"}]})"},
        MalformedModel{"EntityNameNoIdentifier",
                       R"({"version": 1, "entities": [{"name": "A; DROP", "attributes": []}]})"},
        MalformedModel{"EntityNameBeginsWithDigit",
                       R"({"version": 1, "entities": [{"name": "1A", "attributes": []}]})"},
        MalformedModel{"AttributeNoObject",
                       R"({"version": 1, "entities": [{"name": "A", "attributes": ["jws"]}]})"},
        MalformedModel{
            "AttributeWithoutName",
            R"({"version": 1, "entities": [{"name": "A", "attributes": [{"type": "double"}]}]})"},
        MalformedModel{
            "AttributeNameEmpty",
            R"({"version": 1, "entities": [{"name": "A", "attributes": [{"name": "", "type": "double"}]}]})"},
        MalformedModel{
            "AttributeWithoutType",
            R"({"version": 1, "entities": [{"name": "A", "attributes": [{"name": "a"}]}]})"},
        MalformedModel{
            "AttributeTypeUnknown",
            R"({"version": 1, "entities": [{"name": "A", "attributes": [{"name": "a", "type": "float"}]}]})"},
        MalformedModel{
            "AttributeTwiceWithTwoTypes",
            R"({"version": 1, "entities": [{"name": "A", "attributes": [{"name": "a", "type": "double"}, {"name": "a", "type": "binary"}]}]})"},
        MalformedModel{
            "EntityTwiceWithTwoTypes",
            R"({"version": 1, "entities": [{"name": "A", "attributes": [{"name": "a", "type": "double"}]}, {"name": "A", "attributes": [{"name": "a", "type": "binary"}]}]})"}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

TEST(ZRMManagedObjectModel, MergingUnitesEntitiesAndAttributesAndTakesTheHighestVersion) {
    const std::vector<ZRMManagedObjectModel> models = {
        {2, {{"A", {{"a", ZRMAttributeType::Double}}}}},
        {3, {{"A", {{"a", ZRMAttributeType::Double}, {"b", ZRMAttributeType::Binary}}}, {"B", {}}}},
        {1, {}}};
    const auto merged = zrm_modelByMergingModels(models);
    ASSERT_TRUE(merged.hasValue());
    const ZRMManagedObjectModel expected{
        3, {{"A", {{"a", ZRMAttributeType::Double}, {"b", ZRMAttributeType::Binary}}}, {"B", {}}}};
    EXPECT_EQ(merged.value(), expected);
}

TEST(ZRMManagedObjectModel, MergingModelsThatDisagreeAboutATypeFails) {
    const std::vector<ZRMManagedObjectModel> models = {
        {1, {{"A", {{"a", ZRMAttributeType::Double}}}}},
        {1, {{"A", {{"a", ZRMAttributeType::Binary}}}}}};
    const auto merged = zrm_modelByMergingModels(models);
    ASSERT_FALSE(merged.hasValue());
    EXPECT_EQ(merged.error().code(), ZRMModelErrorConflicting);
}

TEST(ZRMManagedObjectModel, MergingNothingGivesAModelWithoutEntities) {
    const auto merged = zrm_modelByMergingModels({});
    ASSERT_TRUE(merged.hasValue());
    EXPECT_TRUE(merged.value().entities.empty());
}
