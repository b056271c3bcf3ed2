#include "edm/modbus/Vorta.h"

#include <algorithm>

#include "Support/Status.h"
#include "dictionary/DeviceElementLookUp.h"

namespace kzm::edm::modbus::Vorta {

namespace {

using kz::orba::VortaExtensionModbus::Device::DeviceElementLookUp;
namespace Status = kzm::ModbusDeviceModel::Status;

constexpr std::string_view CUSTOM_ALARM_VORTA_SHORT_ID = "86b";
constexpr std::string_view CUSTOM_ALARM_IOT_NAME = "Alarm.CustomAlarm";

struct Identification {
    std::string_view iotName;
    std::string_view shortId;
};

// clang-format off
constexpr Identification IDENTIFICATIONS[] = {
    {"PhysicalIdentification.ProductCode",         "38f"},
    {"PhysicalIdentification.ProductFamily",       "390"},
    {"PhysicalIdentification.ProductModel",        "392"},
    {"PhysicalIdentification.ProductRange",        "393"},
    {"PhysicalIdentification.SerialNumber",        "394"},
    {"PhysicalIdentification.HardwareRevision",    "38d"},
    {"PhysicalIdentification.VendorName",          "396"},
    {"PhysicalIdentification.UserApplicationName", "395"},
    {"PhysicalIdentification.ProductId",           "391"},
};
// clang-format on

// The name of an element that is not a custom one.
std::string NameOf(std::string_view id) {
    std::string name = DeviceElementLookUp::GetName(id);
    if (!name.empty()) {
        return name;
    }
    const auto* found = std::find_if(std::begin(IDENTIFICATIONS), std::end(IDENTIFICATIONS),
                                     [&](const Identification& element) { return element.shortId == id; });
    return std::string(found == std::end(IDENTIFICATIONS) ? id : found->iotName);
}

kz::orba::StatusCode DecodeCustomId(std::string_view id, const StringCleaner& codec, std::string_view name,
                                    std::string& iotName, std::string& alias) {
    if (id.size() < 4) {
        return Status::OUT_OF_RANGE;
    }
    std::string decoded(id);
    codec.Decode(decoded);
    iotName = name;
    alias = std::move(decoded);
    return Status::SUCCESS;
}

}  // namespace

bool IsCustomMeasurementIoTName(std::string_view name) {
    return name == CUSTOM_MEASUREMENT_IOT_NAME;
}

bool IsCustomMeasurementVortaSuffix(std::string_view id) {
    return id.starts_with(CUSTOM_MEASUREMENT_VORTA_SHORT_ID);
}

StringCleaner GetCustomMeasurementNameCodec() {
    return StringCleaner(CUSTOM_MEASUREMENT_VORTA_SHORT_ID);
}

StringCleaner GetCustomAlarmNameCodec() {
    return StringCleaner(CUSTOM_ALARM_VORTA_SHORT_ID);
}

std::string GetCustomAlarmIotName() {
    return std::string(CUSTOM_ALARM_IOT_NAME);
}

kz::orba::StatusCode GetIoTNameAndAlias(std::string_view id, std::string& iotName, std::string& alias) {
    if (IsCustomMeasurementVortaSuffix(id)) {
        return DecodeCustomId(id, GetCustomMeasurementNameCodec(), CUSTOM_MEASUREMENT_IOT_NAME, iotName, alias);
    }
    if (id.starts_with(CUSTOM_ALARM_VORTA_SHORT_ID)) {
        return DecodeCustomId(id, GetCustomAlarmNameCodec(), CUSTOM_ALARM_IOT_NAME, iotName, alias);
    }
    iotName = NameOf(id);
    alias.clear();
    return Status::SUCCESS;
}

}  // namespace kzm::edm::modbus::Vorta
