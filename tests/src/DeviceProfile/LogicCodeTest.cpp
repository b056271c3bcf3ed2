#include <gtest/gtest.h>

#include "Device/CustomMeasureClassName.h"
#include "DeviceCache/Quality.h"
#include "DeviceProfile/EnumerationPairData.h"
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
    for (int code = 0; code < 256; ++code) {
        std::string name = "before";
        const auto status =
            Device::CustomMeasureClassName::GetClassNameForLogicCode(static_cast<LogicCodeIdentifier>(code), name);
        EXPECT_EQ(static_cast<int>(status), code < 63 ? 0 : 44) << code;
        EXPECT_EQ(name, code < 63 ? expected(code) : "before") << code;
    }
}

TEST(EnumerationPairData, MatchesItsOwnTypeExactly) {
    const EnumerationPairData number(1U, "label"), real(0.1F, "label"), text("a", "label"), empty("", "label");
    EXPECT_TRUE(number.matches(1U) && real.matches(0.1F) && text.matches("a") && empty.matches(""));
    EXPECT_FALSE(number.matches(2U) || number.matches(1.0F) || number.matches("1"));
    EXPECT_FALSE(real.matches(0.100001F) || real.matches(0U) || real.matches(""));
    EXPECT_FALSE(text.matches("ab") || text.matches("") || empty.matches("a") || empty.matches(0U));
    EXPECT_THROW(EnumerationPairData(static_cast<const char*>(nullptr), "label"), std::logic_error);
}

TEST(Quality, HasATextForEachNumber) {
    const char* const texts[] = {"UNKNOWN", "Uninitialised", "Good", "Bad", "Questionable", "UNKNOWN"};
    for (int quality = -1; quality <= 4; ++quality) {
        EXPECT_EQ(DeviceCache::ConvertToString(static_cast<DeviceCache::_Quality_t>(quality)), texts[quality + 1]);
    }
}

}  // namespace kzm::ModbusDeviceModel::DeviceProfile
