// Turns aliases into ids and ids into names.
#include <stdexcept>

#include "dictionary/DeviceElementLookUp.h"
#include "edm/modbus/Vorta.h"
#include "fuzz/Input.h"

namespace kzm::ModbusFuzz {

namespace {

using kz::orba::VortaExtensionModbus::Device::DeviceElementLookUp;
using namespace kzm::edm::modbus;

void EncodeAndDecode(const StringCleaner& codec, const std::string& alias) {
    std::string text = alias;
    codec.Encode(text);
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    });
    Require(isPlain, "an id has letters, digits and underscores only");
    codec.Decode(text);
    Require(text == alias, "an alias comes back");
}

void DecodeAndEncode(const StringCleaner& codec, const std::string& prefix, const std::string& id) {
    std::string text = id;
    try {
        codec.Decode(text);
    } catch (const std::out_of_range&) {
        Require(text == id && id.size() < prefix.size(), "only a text shorter than the prefix is out of range");
        return;
    } catch (const std::invalid_argument&) {
        Require(text == id, "what cannot be decoded stays");
        return;
    }
    codec.Encode(text);
    Require(text == prefix + id.substr(prefix.size()), "an alias has one id");
}

void FindName(const std::string& id) {
    std::string name = "before";
    std::string alias = "before";
    bool named = false;
    try {
        named = Vorta::GetIoTNameAndAlias(id, name, alias) == kz::orba::StatusCode::OK;
    } catch (const std::invalid_argument&) {
    }
    Require(named || (name == "before" && alias == "before"), "name and alias stay where there are none");
    Require(
        !named || alias.empty() || Vorta::IsCustomMeasurementIoTName(name) || name == Vorta::GetCustomAlarmIotName(),
        "only a custom element has an alias");
}

void LookUp(const std::string& id) {
    const bool isKnown = DeviceElementLookUp::CheckAlmElement(id) || DeviceElementLookUp::CheckMeasurementElement(id) ||
                         DeviceElementLookUp::CheckProtectionElement(id) ||
                         DeviceElementLookUp::CheckSwitchgearCircuitBreakerElement(id);
    Require(isKnown == !DeviceElementLookUp::GetName(id).empty(), "what is in the dictionary has a name");
    Require(DeviceElementLookUp::GetStructure(id).is_object(), "every element has a structure");
    Require(!DeviceElementLookUp::GetClass(id).empty(), "every element has a class");
    DeviceElementLookUp::GetUnit(id);
    for (const auto& [path, pdmId] : DeviceElementLookUp::GetPdmId(id)) {
        DeviceElementLookUp::GetMappedAttributePath(id, path);
    }
    DeviceElementLookUp::GetMappedAttributePath(id, id);
    DeviceElementLookUp::GetVortaIdentificationElement(id);
    DeviceElementLookUp::GetVortaIdForPdmId(id);
    DeviceElementLookUp::GetPdmIdentificationName(id);
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    const std::string text(data, data + size);
    EncodeAndDecode(Vorta::GetCustomMeasurementNameCodec(), text);
    EncodeAndDecode(Vorta::GetCustomAlarmNameCodec(), text);
    DecodeAndEncode(Vorta::GetCustomMeasurementNameCodec(), "7b8", text);
    DecodeAndEncode(Vorta::GetCustomAlarmNameCodec(), "86b", text);
    FindName(text);
    LookUp(text);
    return 0;
}
