#include "WritePlan.h"

#include <algorithm>

#include "ExitStatus.h"
#include "ObjectTable.h"
#include "Text.h"
#include "gateway/json/NumberText.h"
#include "gateway/json/ProblemText.h"
#include "gateway/model/ElementPrecision.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::DataModel::ElementData;
using ModbusDeviceModel::Device::ServiceMapping;

namespace {

Failure Refusal(const ElementData& element, const CannotEncode& reason) {
    return {ExitStatus::REFUSED, element.GetAttributePath() + ": " + reason.what()};
}

ServiceMapping MappingOf(const LoadedProfile& profile, const std::string& object) {
    std::vector<std::string> known;
    for (const LoadedProfile::Service& service : profile.services) {
        known.push_back(service.alias.empty() ? service.name : service.name + "/" + service.alias);
        if (known.back() == object) {
            return profile.serviceModel->GetServiceMapping(service.name, service.alias);
        }
    }
    throw Failure(ExitStatus::NOT_FOUND, "no service writes " + Quoted(object) +
                                             (known.empty() ? "; the profile has none" : Suggestion(object, known)));
}

std::uint16_t* RegistersOf(WritePlan::Payload& payload, const ElementData& element) {
    return payload.mValues.data() + (element.GetDeviceRegister() - payload.mStartAddress);
}

std::string Hexadecimal(std::uint16_t word) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%04X", static_cast<unsigned>(word));
    return text;
}

std::string Shown(const nlohmann::json& value, const ElementData& element, bool exact) {
    if (value.is_number_float() && !exact) {
        return NumberText(value.get<double>(), PrecisionOf(element));
    }
    return value.is_null() ? "not available" : TextOf(value);
}

}  // namespace

WritePlan::WritePlan(const LoadedProfile& profile, const std::string& object,
                     const std::vector<std::string>& assignments)
    : mMapping(MappingOf(profile, object)), mBigEndian(profile.serviceModel->IsBigEndian()) {
    for (const std::string& assignment : assignments) {
        const std::size_t equals = assignment.find('=');
        if (equals == assignment.npos) {
            throw Failure(ExitStatus::WRONG_USAGE, Quoted(assignment) + " is not ELEMENT=VALUE");
        }
        const Element element = FindElement(assignment.substr(0, equals));
        if (std::ranges::any_of(mWanted, [&](const auto& wanted) { return wanted.first == element; })) {
            throw Failure(ExitStatus::WRONG_USAGE, Quoted(element->GetAttributePath()) + " is given twice");
        }
        try {
            mWanted.emplace_back(element, EncodeValue(*element, mBigEndian, assignment.substr(equals + 1)));
        } catch (const CannotEncode& reason) {
            throw Refusal(*element, reason);
        }
        mFrameIndex = mWanted.front().first->GetFrameIndex();
        if (element->GetFrameIndex() != mFrameIndex) {
            throw Failure(ExitStatus::REFUSED, "the elements are in different frames; write them one at a time");
        }
    }
}

WritePlan::Element WritePlan::FindElement(const std::string& name) const {
    std::vector<std::string> known;
    for (const Element& element : mMapping.elements) {
        known.push_back(element->GetAttributePath());
        if (known.back() == name) {
            return element;
        }
    }
    throw Failure(ExitStatus::NOT_FOUND, "no element " + Quoted(name) + Alternatives(name, known));
}

WritePlan::Payload WritePlan::Apply(const Payload& before) const {
    Payload after = before;
    for (const auto& [element, encoded] : mWanted) {
        EncodedValue::Registers registers = encoded.registers;
        const std::uint16_t* const present = RegistersOf(after, *element);
        for (std::size_t i = 0; i < registers.size(); ++i) {
            registers[i] = static_cast<std::uint16_t>(registers[i] | (present[i] & ~encoded.mask[i]));
        }
        after.SetValue(element->GetDeviceRegister(), registers.data(), element->GetNumberOfRegisters(), nullptr);
    }
    // Only now: a later element may have overwritten an earlier one.
    for (const auto& [element, encoded] : mWanted) {
        try {
            encoded.CheckReadBack(ValueIn(after, element));
        } catch (const CannotEncode& reason) {
            throw Refusal(*element, reason);
        }
    }
    return after;
}

nlohmann::json WritePlan::ValueIn(const Payload& payload, const Element& element) const {
    Payload copy = payload;
    const std::uint16_t* const first = RegistersOf(copy, *element);
    return DecodeValue(*element, mBigEndian, {first, first + element->GetNumberOfRegisters()});
}

WritePlan::Payload WritePlan::ChangesOf(const Payload& before, const Payload& after) {
    const auto& now = after.mValues;
    const auto first = std::mismatch(now.begin(), now.end(), before.mValues.begin()).first;
    const auto last = std::mismatch(now.rbegin(), now.rend(), before.mValues.rbegin()).first.base();
    Payload changes(after.mFunctionCode, static_cast<std::uint16_t>(after.mStartAddress + (first - now.begin())), 0);
    if (first < last) {
        changes.mValues.assign(first, last);
    }
    return changes;
}

std::vector<Row> WritePlan::CompareRegisters(const Payload& before, const Payload& after) const {
    std::vector<Row> rows{HeadingRow({"REGISTER", "BEFORE", "AFTER"})};
    for (std::size_t i = 0; i < after.mValues.size(); ++i) {
        const std::size_t address = after.mStartAddress + i;
        const bool named = std::ranges::any_of(mWanted, [address](const auto& wanted) {
            const std::size_t first = wanted.first->GetDeviceRegister();
            return address >= first && address < first + wanted.first->GetNumberOfRegisters();
        });
        if (named) {
            rows.push_back(
                TextRow({std::to_string(address), Hexadecimal(before.mValues[i]), Hexadecimal(after.mValues[i])}));
        }
    }
    return rows;
}

std::vector<Row> WritePlan::CompareElements(const Payload& before, const Payload& after, bool exact) const {
    std::vector<Row> rows{HeadingRow({"ELEMENT", "BEFORE", "AFTER"})};
    for (const Element& element : mMapping.elements) {
        if (element->GetFrameIndex() == mFrameIndex) {
            rows.push_back(
                TextRow({Printable(element->GetAttributePath()), Shown(ValueIn(before, element), *element, exact),
                         Shown(ValueIn(after, element), *element, exact)}));
        }
    }
    return rows;
}

}  // namespace kzm::ModbusTool
