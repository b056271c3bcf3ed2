// Loads a profile, and reads all that it describes out of a cache. The input is the profile's text and, after a NUL,
// bytes for the registers.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

#include "DataModel/AttributeAdapter.h"
#include "dictionary/CustomAlarmElementStructure.h"
#include "fuzz/Input.h"
#include "fuzz/JsonMutator.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/model/ValueEncoder.h"
#include "gateway/profile/ProfileLoader.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusFuzz {

namespace {

using namespace ModbusGateway;
using ModbusDeviceModel::DataModel::AttributeAdapter;
using ModbusDeviceModel::DataModel::ElementData;
using ModbusDeviceModel::DeviceProfile::FrameKind;
using nlohmann::json;
using Cache = std::shared_ptr<RegisterCache>;

constexpr std::uint64_t NOW = 1'700'000'000'000;

void RequireGoodProblems(const Problems& problems) {
    for (const Problem& problem : problems) {
        Require(problem.line >= 1, "a problem stands on a line");
        Require(problem.pointer.empty() || problem.pointer.front() == '/', "a problem has a pointer");
        Require(!problem.message.empty(), "a problem is told");
        json({problem.pointer, problem.message}).dump();  // throws for what is no UTF-8
    }
}

// The bytes go round.
Cache FilledCache(const LoadedProfile& profile, std::string_view bytes) {
    const auto cache = std::make_shared<RegisterCache>(profile.model->GetFrames());
    std::size_t next = 0;
    const auto take = [&] { return bytes.empty() ? 0U : static_cast<unsigned char>(bytes[next++ % bytes.size()]); };
    std::uint8_t index = 0;
    for (const auto& frame : profile.model->GetFrames()) {
        std::vector<std::uint16_t> registers(frame.mLength);
        std::ranges::generate(registers, [&] { return static_cast<std::uint16_t>(take() << 8 | take()); });
        cache->Update(index++, registers, NOW);
    }
    return cache;
}

void RequireGoodObject(const json& value) {
    Require(value.is_object() && IsFinite(value), "an object has finite values");
    value.dump(-1, ' ', false, json::error_handler_t::replace);
}

void ReadObjects(const LoadedProfile& profile, const Cache& cache) {
    for (const auto& object : profile.objects) {
        kz::orba::VortaORBAObject target("", object.name, object.alias, json::object());
        profile.model->GetVortaObjectValue(cache, /*ignoreCacheAge=*/false, target);
        RequireGoodObject(target.GetValue());
        if (const auto attribute = std::dynamic_pointer_cast<AttributeAdapter>(object.adapter)) {
            ModbusDeviceModel::DeviceCache::_Quality_t quality{};
            json value;
            attribute->GetEdmValue(cache, profile.model->IsBigEndian(), /*ignoreCacheAge=*/true, quality, value);
            Require(IsFinite(value), "a value is finite");
        }
        std::string text;
        profile.model->GetUnit(object.name, text);
        profile.model->GetClassName(object.name, text);
        profile.model->GetMeasurementInformation(object.name);
        for (const auto& [index, frame] : profile.model->GetDependencyFrame(object.name, object.alias)) {
            Require(frame == &profile.model->GetFrames().at(index), "an object depends on frames of its model");
        }
    }
}

void EvaluateAlarms(const LoadedProfile& profile, const Cache& cache) {
    using kz::orba::VortaExtensionModbus::Device::CustomAlarmElementStructure;
    const ModbusDeviceModel::DataModel::PreviousMeasurements previous(
        new ModbusDeviceModel::DataModel::PreviousMeasurements::element_type);
    for (int round = 0; round < 2; ++round) {
        for (const auto& alarm : profile.alarms) {
            kz::orba::VortaORBAObject target(
                "", alarm.name, alarm.alias,
                CustomAlarmElementStructure::GetStructure().at("IoTElementDynamicClassForDevice"));
            profile.model->GetCustomAlarmVortaObjectValue(cache, /*ignoreCacheAge=*/false, target, previous);
            RequireGoodObject(target.GetValue());
        }
    }
}

void Write(const ModbusDeviceModel::Device::ServiceMapping& mapping, ElementData& element, bool bigEndian) {
    const auto payload = mapping.BuildFrameDataValue(element.GetFrameIndex());
    try {
        const auto encoded = EncodeValue(element, bigEndian, "1");
        Require(payload->SetValue(element.GetDeviceRegister(), encoded.registers.data(),
                                  static_cast<std::uint16_t>(encoded.registers.size()), nullptr) ||
                    mapping.frames->at(element.GetFrameIndex()).mKind == FrameKind::ADDRESS_LIST,
                "a service's element fits its frame");
    } catch (const CannotEncode&) {
    }
}

void MapServices(const LoadedProfile& profile) {
    for (const auto& service : profile.services) {
        const auto mapping = profile.serviceModel->GetServiceMapping(service.name, service.alias);
        Require(!mapping.elements.empty(), "a service has elements");
        for (const auto& element : mapping.elements) {
            Write(mapping, *element, profile.serviceModel->IsBigEndian());
        }
    }
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    const Input catchesLog(nullptr, 0);
    const kzm::StandIn::StoppedClock clock(NOW);
    const std::string_view whole(reinterpret_cast<const char*>(data), size);
    const auto end = std::min(whole.find('\0'), size);
    const auto loaded = ProfileLoader::Load(whole.substr(0, end));
    Require((loaded.profile == nullptr) == HasError(loaded.problems), "there is a profile, or an error");
    RequireGoodProblems(loaded.problems);
    if (loaded.profile) {
        const Cache cache = FilledCache(*loaded.profile, whole.substr(std::min(end + 1, size)));
        ReadObjects(*loaded.profile, cache);
        EvaluateAlarms(*loaded.profile, cache);
        MapServices(*loaded.profile);
    }
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    return kzm::ModbusFuzz::JsonMutator(seed).Mutate(data, size, maxSize);
}
