#include <gtest/gtest.h>

#include <numeric>
#include <stdexcept>

#include "dictionary/DeviceElementLookUp.h"
#include "edm/modbus/Vorta.h"
#include "kzm/Vorta/VortaId.h"

namespace kzm::edm::modbus::NamingTest {

using kz::orba::VortaExtensionModbus::Device::DeviceElementLookUp;
using kzm::Vorta::VortaId;

TEST(Naming, AnAliasBecomesPartOfAnIdAndBack) {
    const std::pair<std::string, std::string> aliases[] = {{"", ""},
                                                           {"Pump3", "Pump3"},
                                                           {"Cage 3/A", "Cage_203_2fA"},
                                                           {"a_b;c", "a_5fb_3bc"},
                                                           {std::string("\0\x7f\xff", 3), "_00_7f_ff"},
                                                           {"Größe", "Gr_c3_b6_c3_9fe"},
                                                           {"圧力", "_e5_9c_a7_e5_8a_9b"}};
    for (const auto& [alias, encoded] : aliases) {
        EXPECT_EQ(VortaId::EncodeCustomAlias(alias), encoded);
        EXPECT_EQ(VortaId::DecodeAliasSuffix(encoded), alias);
        std::string text = alias;
        Vorta::GetCustomMeasurementNameCodec().Encode(text);
        EXPECT_EQ(text, "7b8" + encoded);
    }
    std::string everyByte(256, '\0');
    std::iota(everyByte.begin(), everyByte.end(), '\0');
    const std::string encoded = VortaId::EncodeCustomAlias(everyByte);
    EXPECT_EQ(encoded.size(), 62U + 3 * 194);
    EXPECT_EQ(VortaId::DecodeAliasSuffix(encoded), everyByte);
}

TEST(Naming, OnlyWhatTheEncoderMakesIsDecoded) {
    for (const char* suffix : {"_", "_2", "a_", "_2F", "_g0", "_0", "a b", "\xc3", "_41", "_7a", "_30", "-"}) {
        std::string text = std::string("86b") + suffix;
        EXPECT_THROW(Vorta::GetCustomAlarmNameCodec().Decode(text), std::invalid_argument) << suffix;
        EXPECT_EQ(text, std::string("86b") + suffix);
        std::string name = "name", alias = "alias";
        EXPECT_THROW(Vorta::GetIoTNameAndAlias(text, name, alias), std::invalid_argument) << suffix;
        EXPECT_EQ(name + alias, "namealias");
    }
}

TEST(Naming, DecodingDropsThePrefixWhateverItIs) {
    std::string text = "xyza_20b";
    StringCleaner(Vorta::CUSTOM_MEASUREMENT_VORTA_SHORT_ID).Decode(text);
    EXPECT_EQ(text, "a b");
    for (std::string shorter : {"", "7b"}) {
        EXPECT_THROW(StringCleaner("7b8").Decode(shorter), std::out_of_range);
    }
}

TEST(Naming, AnIdHasANameAndACustomOneAnAlias) {
    struct Row {
        std::string id;
        int status;
        std::string name, alias;
    };
    const Row rows[] = {{"7b8", 28, "before", "before"},
                        {"86b", 28, "before", "before"},
                        {"7b8x", 0, "Measurement.CustomMeasurement", "x"},
                        {"7b8Cage_203", 0, "Measurement.CustomMeasurement", "Cage 3"},
                        {"86b_e5_9c_a7", 0, "Alarm.CustomAlarm", "圧"},
                        {"86b7b8", 0, "Alarm.CustomAlarm", "7b8"},
                        {"625", 0, "Measurement.BatteryVoltage", ""},
                        {"1d", 0, "Alarm.GroundFaultAlarm", ""},
                        {"38f", 0, "PhysicalIdentification.ProductCode", ""},
                        {"x7b8", 0, "x7b8", ""},
                        {"7B8a", 0, "7B8a", ""},
                        {"250", 0, "250", ""},
                        {"", 0, "", ""}};
    for (const Row& row : rows) {
        std::string name = "before", alias = "before";
        EXPECT_EQ(static_cast<int>(Vorta::GetIoTNameAndAlias(row.id, name, alias)), row.status) << row.id;
        EXPECT_EQ(name, row.name) << row.id;
        EXPECT_EQ(alias, row.alias) << row.id;
        EXPECT_EQ(Vorta::IsCustomMeasurementVortaSuffix(row.id), row.id.rfind("7b8", 0) == 0) << row.id;
    }
    std::string id = "7b8a_20b", alias;
    EXPECT_EQ(static_cast<int>(Vorta::GetIoTNameAndAlias(id, id, alias)), 0);
    EXPECT_EQ(id + alias, "Measurement.CustomMeasurementa b");
    EXPECT_TRUE(Vorta::IsCustomMeasurementIoTName(Vorta::CUSTOM_MEASUREMENT_IOT_NAME));
    EXPECT_TRUE(Vorta::IsCustomMeasurementVortaSuffix(Vorta::CUSTOM_MEASUREMENT_VORTA_SHORT_ID));
    EXPECT_EQ(static_cast<int>(Vorta::GetIoTNameAndAlias(Vorta::FIRMWARE_MODULE_VORTA_SHORT_ID, id, alias)), 0);
    EXPECT_EQ(id + alias, "250");
    std::string ofPart = "x86ba_20b";
    EXPECT_EQ(static_cast<int>(Vorta::GetIoTNameAndAlias(std::string_view(ofPart).substr(1), alias, ofPart)), 0);
    EXPECT_EQ(alias + ofPart, "Alarm.CustomAlarma b");
    EXPECT_FALSE(Vorta::IsCustomMeasurementIoTName(Vorta::GetCustomAlarmIotName()));
}

TEST(Naming, ThePlatformAnswersForIdentificationElements) {
    const std::pair<std::string, std::string> elements[] = {
        {"38d", "HardwareRevision"}, {"38f", "ProductCode"},  {"390", "ProductFamily"},
        {"391", "ProductId"},        {"392", "ProductModel"}, {"393", "ProductRange"},
        {"394", "SerialNumber"},     {"396", "VendorName"},   {"395", "UserApplicationName"}};
    for (const auto& [id, pdmName] : elements) {
        std::string name, alias;
        Vorta::GetIoTNameAndAlias(id, name, alias);
        EXPECT_EQ(name, "PhysicalIdentification." + pdmName);
        EXPECT_EQ(DeviceElementLookUp::GetVortaIdentificationElement(id), name);
        EXPECT_EQ(DeviceElementLookUp::GetPdmIdentificationName(id), pdmName);
        EXPECT_TRUE(DeviceElementLookUp::IsPdmElement(id) && DeviceElementLookUp::CheckIdVortaElement(id));
        EXPECT_FALSE(DeviceElementLookUp::CheckIdElement(id));
        EXPECT_EQ(DeviceElementLookUp::GetVortaIdForPdmId(id), "");
    }
    const std::string pdmId = "LPHD1_SerNum";
    EXPECT_TRUE(DeviceElementLookUp::IsPdmElement(pdmId) && DeviceElementLookUp::CheckIdElement(pdmId));
    EXPECT_FALSE(DeviceElementLookUp::CheckIdVortaElement(pdmId));
    EXPECT_EQ(DeviceElementLookUp::GetVortaIdForPdmId(pdmId), "394");
    EXPECT_EQ(DeviceElementLookUp::GetVortaIdentificationElement(pdmId), "PhysicalIdentification.SerialNumber");
    EXPECT_EQ(DeviceElementLookUp::GetPdmIdentificationName(pdmId), "SerialNumber");
    EXPECT_FALSE(DeviceElementLookUp::IsPdmElement("") || DeviceElementLookUp::IsPdmElement("625"));
    EXPECT_EQ(DeviceElementLookUp::GetVortaIdentificationElement("625") +
                  DeviceElementLookUp::GetPdmIdentificationName("625"),
              "");
}

}  // namespace kzm::edm::modbus::NamingTest
