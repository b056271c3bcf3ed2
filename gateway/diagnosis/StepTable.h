#pragma once

#include <array>
#include <optional>

#include "DataModel/StepObserver.h"
#include "gateway/diagnosis/Explanation.h"

namespace kzm::ModbusGateway {

// What is known of a kind of step.
struct StepRow {
    ModbusDeviceModel::DataModel::StepKind kind;
    const char* name;  // in JSON
    // The members of a profile that may cause it, the likelier first; empty for none.
    std::array<const char*, 2> causes;
    // What the part is that it is a step of, if it tells.
    std::optional<Explanation::Kind> part = {};
};

// clang-format off
// All kinds; row n is kind n.
inline constexpr std::array STEPS{
    StepRow{ModbusDeviceModel::DataModel::StepKind::OBJECT, "object", {"", ""}, Explanation::Kind::OBJECT},
    StepRow{ModbusDeviceModel::DataModel::StepKind::GROUP, "group", {"", ""}, Explanation::Kind::GROUP},
    StepRow{ModbusDeviceModel::DataModel::StepKind::ELEMENT, "element", {"address", ""}, Explanation::Kind::ELEMENT},
    StepRow{ModbusDeviceModel::DataModel::StepKind::COMPUTATION, "computation", {"chain", ""}, Explanation::Kind::COMPUTATION},
    StepRow{ModbusDeviceModel::DataModel::StepKind::CONSTANT, "constant", {"constant", ""}, Explanation::Kind::CONSTANT},
    StepRow{ModbusDeviceModel::DataModel::StepKind::ALARM, "alarm", {"", ""}, Explanation::Kind::ALARM},
    StepRow{ModbusDeviceModel::DataModel::StepKind::FRAME, "frame", {"address", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::RECEIVED, "received", {"address", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::SWAPPED, "swapped", {"order", "type"}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::PATTERN, "pattern", {"notAvailable", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::MASKED, "masked", {"mask", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::GATHERED, "gathered", {"type", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::RAW, "raw", {"type", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::EXPONENT, "exponent", {"exponent", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::SCALED, "scaled", {"scale", "offset"}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::RANGE, "range", {"type", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::LABEL, "label", {"labels", "enumeration"}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::TRANSLATED, "translated", {"labels", "enumeration"}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::AVAILABILITY, "availability", {"availability", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::QUALITY, "quality", {"quality", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::VALUE, "value", {"", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::INPUT, "input", {"inputs", "exponent"}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::PARAMETERS, "parameters", {"inputs", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::RESULT, "result", {"chain", ""}},
    StepRow{ModbusDeviceModel::DataModel::StepKind::PREVIOUS, "previous", {"previous", ""}, Explanation::Kind::PREVIOUS},
    StepRow{ModbusDeviceModel::DataModel::StepKind::FAILURE, "failure", {"", ""}},
};
// clang-format on

constexpr const StepRow& RowOf(ModbusDeviceModel::DataModel::StepKind kind) {
    return STEPS[static_cast<std::size_t>(kind)];
}

static_assert([] {
    for (std::size_t i = 0; i < STEPS.size(); ++i) {
        if (static_cast<std::size_t>(STEPS[i].kind) != i) {
            return false;
        }
    }
    return STEPS.back().kind == ModbusDeviceModel::DataModel::StepKind::FAILURE;
}());

}  // namespace kzm::ModbusGateway
