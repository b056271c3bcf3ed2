#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/ComputedAlarmPreviousMeasurement.h"
#include "DataModel/StepObserver.h"
#include "DeviceProfile/ModbusFunctionCode.h"
#include "gateway/Export.h"
#include "gateway/profile/LoadedProfile.h"

namespace kzm::ModbusGateway {

// Why a value is missing or not Good, with its details. Those that a reason has not are empty.
struct KZM_GATEWAY_EXPORT Why {
    // What decides.
    ModbusDeviceModel::DataModel::Reason reason = ModbusDeviceModel::DataModel::Reason::GOOD;
    std::string frame = {};                       // the frame's name, or its index without a profile
    std::optional<std::uint8_t> frameIndex = {};  // of the frame
    std::optional<std::int64_t> age = {};         // of the frame or the previous value, in ms; negative: in the future
    std::uint64_t limit = 0;                      // the greatest age in ms; 0 if it does not matter
    std::uint8_t exception = 0;                   // the number of the last exception answer; 0 for none
    std::string text = {};                        // a label, a pattern, what the device says, a message, a role
    std::string input = {};                       // the name of the input or operand, outermost first: "a / exponent"
    std::optional<double> number = {};            // that has no label or does not fit
    double low = 0;                               // the range that it does not fit, both ends included
    double high = 0;                              // its upper end
    ModbusDeviceModel::DataModel::Reason cause = ModbusDeviceModel::DataModel::Reason::GOOD;  // of the input
    kz::orba::StatusCode status{};  // of the part that decides

    // One line for people, without a full stop: "frame basic was never received". "good" for GOOD.
    std::string Text() const;
    // "name", "text", "opcua" (the status's name and number), and the details that there are.
    nlohmann::json ToJson() const;
};

// How a value comes about: a part of a request, the steps that it took, and the parts that it asked. A value type.
struct KZM_GATEWAY_EXPORT Explanation {
    // What a part is. OTHER: an adapter of the program's own.
    enum class Kind { OTHER, OBJECT, GROUP, ELEMENT, COMPUTATION, CONSTANT, ALARM, PREVIOUS };

    // ModbusDeviceModel::DataModel::Step, keeping what it saw.
    struct Step {
        // Which step; StepKind tells what it has of the following.
        ModbusDeviceModel::DataModel::StepKind kind;
        ModbusDeviceModel::DataModel::Reason reason;  // GOOD unless it decides
        bool applied = true;                          // see StepKind
        // As in the step that was seen.
        std::vector<std::uint8_t> bytes = {};
        std::vector<std::uint8_t> mask = {};
        std::string text = {};
        nlohmann::json value = nullptr;
        double number = 0;
        double factor = 1;
        double offset = 0;
        double low = 0;
        double high = 0;
        std::size_t line = 0;  // in the profile, of what caused it; 0 if unknown
    };

    // The registers of an element.
    struct Registers {
        ModbusDeviceModel::ModbusFunctionCode function{};  // that reads them; 0 if the frame is unknown
        std::uint16_t address = 0;                         // of the first
        std::uint8_t count = 0;                            // how many
        std::string type;                                  // as in profiles
        std::uint8_t logicCode = 0;                        // of the type
        std::uint8_t frameIndex = 0;                       // of the frame
        std::string frame;                                 // its name, or its index without a profile
        std::uint64_t timestamp = 0;                       // of the frame, milliseconds since 1970; 0 for never
        std::optional<std::int64_t> age = std::nullopt;    // of the frame, in ms; none if never received
        std::uint64_t limit = 0;                           // the greatest age, in ms
        std::uint8_t exception = 0;                        // the last exception answer of the frame; 0 for none
        bool ignoresAge = false;                           // the request was told to
    };

    Kind kind = Kind::OTHER;                    // what this part is
    std::string role;                           // what it is to the part around it: "value", "quality", an input's name
    std::string name;                           // of a chain, an alarm, a previous value; the urn of an object
    std::vector<Step> steps;                    // in the order in which they were taken
    std::vector<Explanation> parts;             // likewise
    std::optional<Registers> registers;         // only of an ELEMENT
    std::shared_ptr<const ProfilePlace> place;  // in the profile; null if unknown
    // How it ended. `value` is null if there is none; `quality` is Bad then for an object.
    kz::orba::StatusCode status{};
    ModbusDeviceModel::DeviceCache::_Quality_t quality = ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED;
    nlohmann::json value;  // as the part around it gets it
    Why why;               // why it is not Good
    // Of the outermost part only: the object after the request, and what the request returned.
    nlohmann::json object;
    kz::orba::StatusCode requestStatus{};

    // "kind", "role", "name", "status", "quality", "value", "reason", "steps", "parts" and so on; docs/diagnosis.md
    // lists them. Bytes are hexadecimal text.
    nlohmann::json ToJson() const;
};

// All that an explanation is made from. The references must stay valid during the call.
struct ExplainRequest {
    // The register cache that requests read.
    using Cache = std::shared_ptr<ModbusDeviceModel::DeviceCache::CacheReadAccessInterface>;

    Cache cache;                  // a RegisterCache also knows the number of an exception answer
    bool ignoreCacheAge = false;  // as for the model's requests
};

// Runs the same request as the model's GetVortaObjectValue or GetCustomAlarmVortaObjectValue, watches its steps, and
// returns them with the reason. Nothing is kept; the previous values of an alarm stay as they are. Where several parts
// are not Good, the reason is that of the part without which there is no value, else the object's quality element,
// else the value's quality; among equals the first that was read. A date-time never decides. Logs what the request
// logs, throws what it throws, and std::bad_alloc. Any number of threads may explain at once.
KZM_GATEWAY_EXPORT Explanation Explain(const LoadedProfile& profile, const LoadedProfile::Object& object,
                                       const ExplainRequest& request);
KZM_GATEWAY_EXPORT Explanation Explain(const LoadedProfile& profile, const LoadedProfile::Alarm& alarm,
                                       const ExplainRequest& request,
                                       const ModbusDeviceModel::DataModel::PreviousMeasurements& previous);
// For a model that was not made from a profile: frames have their indexes for names, and there are no places. `object`:
// the object that the request fills, which becomes Explanation::object.
KZM_GATEWAY_EXPORT Explanation Explain(const ModbusDeviceModel::Device::IDeviceModel& model, const std::string& name,
                                       const std::string& alias, const ExplainRequest& request,
                                       nlohmann::json object = nlohmann::json::object());
KZM_GATEWAY_EXPORT Explanation ExplainAlarm(const ModbusDeviceModel::Device::IDeviceModel& model,
                                            const std::string& name, const std::string& alias,
                                            const ExplainRequest& request,
                                            const ModbusDeviceModel::DataModel::PreviousMeasurements& previous,
                                            nlohmann::json object);

}  // namespace kzm::ModbusGateway
