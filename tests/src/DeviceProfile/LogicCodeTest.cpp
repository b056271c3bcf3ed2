#include <gtest/gtest.h>

#include "Device/CustomMeasureClassName.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "kzm/StandIn/CapturedLog.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {

TEST(LogicCode, OnlySomeCodesHaveAnEnumerationType) {
    StandIn::CapturedLog log;
    const std::map<int, EnumerationType> types{
        {0, EnumerationType::UNSIGNED_INTEGER},  {1, EnumerationType::UNSIGNED_INTEGER},
        {11, EnumerationType::UNSIGNED_INTEGER}, {12, EnumerationType::UNSIGNED_INTEGER},
        {23, EnumerationType::UNSIGNED_INTEGER}, {30, EnumerationType::FLOAT},
        {42, EnumerationType::STRING},           {61, EnumerationType::STRING}};
    for (int code = 0; code < 256; ++code) {
        const auto expected = types.count(code) ? types.at(code) : EnumerationType::NONE;
        EXPECT_EQ(EnumerationPairData::GetTypeFromLogicCode(static_cast<LogicCodeIdentifier>(code)), expected) << code;
    }
    EXPECT_EQ(log.Lines().size(), 256U - types.size());
    EXPECT_EQ(log.Texts(Log::OrbaLogLevel::WARNING).at(0),
              "[DeviceProfile::EnumerationPairData] [GetTypeFromLogicCode] Logic code 2 is not compatible with any "
              "enumeration types");
}

TEST(LogicCode, TheClassNameFollowsTheKindOfValue) {
    const std::set<int> integers{2, 3, 4, 5, 13, 14, 15, 16, 19, 20, 21, 24, 25, 26, 27, 28, 33, 34, 35, 38, 51, 52};
    const std::set<int> floats{6, 7, 8, 17, 18, 22, 29, 31, 32, 36, 37, 39, 49, 50, 60};
    const auto expected = [&](int code) -> std::string {
        if (code == 10) {
            return "$iot.measurement.DiscreteMeasurementValue<Boolean>";
        }
        if (integers.count(code) || floats.count(code)) {
            const char* type = floats.count(code) ? "<Float>" : "<Integer>";
            return std::string("$iot.measurement.NumericalMeasurementValue") + type;
        }
        return std::string("$iot.measurement.DiscreteMeasurementValue") +
               (code >= 44 && code <= 48 ? "<DateTime>" : "<String>");
    };
    std::string name = "before";
    const auto statusOf = [&](int code) {
        return static_cast<int>(
            Device::CustomMeasureClassName::GetClassNameForLogicCode(static_cast<LogicCodeIdentifier>(code), name));
    };
    EXPECT_EQ(statusOf(static_cast<int>(LogicCodeRows().size())), 44);
    EXPECT_EQ(statusOf(255), 44);
    EXPECT_EQ(RowOf(LogicCodeIdentifier{255}).name, "");
    EXPECT_EQ(name, "before");
    for (int code = 0; code < 63; ++code) {
        EXPECT_EQ(statusOf(code), 0) << code;
        EXPECT_EQ(name, expected(code)) << code;
    }
}

TEST(EnumerationPairData, AreOrderedByTypeValueAndLabel) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<EnumerationPairData> sorted{{2U, "b"},   {2U, "c"},  {10U, "a"}, {-1.0F, "z"}, {0.5F, "a"},
                                                  {0.5F, "b"}, {nan, "a"}, {"", "z"},  {"a", "b"},   {"b", "a"}};
    for (std::size_t left = 0; left < sorted.size(); ++left) {
        for (std::size_t right = 0; right < sorted.size(); ++right) {
            EXPECT_EQ(sorted[left] < sorted[right], left < right) << left << " " << right;
        }
    }
}

TEST(EnumerationPairData, MatchesItsOwnTypeExactly) {
    const EnumerationPairData number(1U, "label"), real(0.1F, "label"), text("a", "label"), empty("", "label");
    EXPECT_TRUE(number.matches(1U) && real.matches(0.1F) && text.matches("a") && empty.matches(""));
    EXPECT_FALSE(number.matches(2U) || number.matches(1.0F) || number.matches("1"));
    EXPECT_FALSE(real.matches(0.100001F) || real.matches(0U) || real.matches(""));
    EXPECT_FALSE(text.matches("ab") || text.matches("") || empty.matches("a") || empty.matches(0U));
    EXPECT_FALSE(text.matches(nullptr) || empty.matches(nullptr) || number.matches(nullptr));
    EXPECT_THROW(EnumerationPairData(static_cast<const char*>(nullptr), "label"), std::logic_error);
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
