#include "gateway/profile/ProfileAlarms.h"

#include "DataModel/ConstantComputedAlarmOperand.h"
#include "DataModel/DataObjectAdapter.h"
#include "DataModel/MeasurementComputedAlarmOperand.h"
#include "DataModel/PreviousMeasurementComputedAlarmOperand.h"
#include "dictionary/CustomAlarmElementStructure.h"
#include "gateway/profile/ObjectIdentity.h"
#include "gateway/profile/ProfileChains.h"

namespace kzm::ModbusGateway {

using kz::orba::VortaExtensionModbus::Device::CustomAlarmElementStructure;
using ModbusDeviceModel::DataModel::AttributeAdapterType;
using ModbusDeviceModel::DataModel::ComputedAlarmElement;
using ModbusDeviceModel::DataModel::ComputedAlarmOperandType;
using ModbusDeviceModel::DataModel::ConstantComputedAlarmOperand;
using ModbusDeviceModel::DataModel::DataObjectAdapter;
using ModbusDeviceModel::DataModel::MeasurementComputedAlarmOperand;
using ModbusDeviceModel::DataModel::PreviousMeasurementComputedAlarmOperand;
using ModbusDeviceModel::Device::DeviceModel;

namespace {

// The operands' names, which are the keys of the chain's parameters.
constexpr const char* LEFT = "left";
constexpr const char* RIGHT = "right";

constexpr auto PREVIOUS = ComputedAlarmOperandType::PREVIOUS_MEASUREMENT;

bool HasOneInput(const ChainFactory::Result& made) {
    return made.signatures.front().size() == 1;
}

// Reports an operand too many or too few; false for the latter.
bool CheckSides(const JsonCursor& alarm, const ChainFactory::Result& made) {
    const bool one = HasOneInput(made);
    if (one && alarm->contains(RIGHT)) {
        alarm.At(RIGHT).Error("the chain " + Quoted(made.chain->GetName()) + " uses only the operand " + Quoted(LEFT));
    }
    if (!one && !alarm->contains(RIGHT)) {
        alarm.Error("the chain " + Quoted(made.chain->GetName()) + " needs the operand " + Quoted(RIGHT));
        return false;
    }
    return true;
}

// The alarm's object before it is evaluated.
nlohmann::json ObjectOf(const ObjectIdentity& identity) {
    if (identity.key) {
        return identity.key->MakeObject(identity.name, identity.alias, /*unit=*/"");
    }
    nlohmann::json structure = CustomAlarmElementStructure::GetStructure();
    nlohmann::json object = std::move(structure.front());
    object["name"] = identity.name;
    object["alias"] = identity.alias;
    return object;
}

}  // namespace

bool ProfileAlarms::Operand::Is(ComputedAlarmOperandType type) const {
    return operand && operand->GetType() == type;
}

ProfileAlarms::ProfileAlarms(const JsonCursor& section, ProfileElements& elements, const ProfileObjects& objects,
                             const ChainRegistry& chains)
    : mElements(elements), mObjects(objects), mChains(chains) {
    section.ForEach([this](const std::string&, const JsonCursor& place) { ReadAlarm(place); });
}

void ProfileAlarms::ReadAlarm(const JsonCursor& place) {
    const ObjectIdentity identity = ObjectIdentity::ReadAlarm(place);
    mNames.push_back(identity.name);
    Operand left = ReadOperand(place, LEFT);
    Operand right = ReadOperand(place, RIGHT);
    CheckPrevious(place, left, right);
    CheckPrevious(place, right, left);
    const bool changes = ReadChanges(place, left, right);
    if (!place.Has("chain")) {
        return;  // already reported
    }
    auto made = ChainFactory::MakeForAlarm(place.At("chain").Text(), LEFT, RIGHT, *place.At("settings"), mChains);
    ReportFaults(place, made);
    if (!made.chain) {
        return;
    }
    if (!CheckSides(place, made) || !left.operand || !right.operand) {
        return;
    }
    ChainInputsByName inputs{{LEFT, {left.place, left.Is(PREVIOUS) ? right.kind : left.kind}}};
    if (!HasOneInput(made)) {
        inputs.insert({RIGHT, {right.place, right.Is(PREVIOUS) ? left.kind : right.kind}});
    }
    CheckInputKinds(made, inputs);
    for (const Operand* const operand : {&left, &right}) {
        mPlaces[operand->operand.get()] = PlaceOf(operand->place);
    }
    Keep(place,
         {identity.name, identity.alias, ObjectOf(identity),
          std::make_shared<ComputedAlarmElement>(
              place.At("name").Text(), changes, place.At("priority").Text(), place.At("description").Text(),
              place.At("type").Text(), std::move(made.chain), std::move(left.operand), std::move(right.operand))});
}

bool ProfileAlarms::ReadChanges(const JsonCursor& alarm, const Operand& left, const Operand& right) {
    const bool changes = alarm.Has("changes") && alarm.At("changes")->get<bool>();
    if (changes && left.operand && right.operand && !left.Is(PREVIOUS) && !right.Is(PREVIOUS)) {
        alarm.At("changes").Error(
            "an alarm that reports changes must compare a measurement with its \"previous\" value");
    }
    return changes;
}

// A missing operand is null; only chains that use just the left one may lack the right one.
ProfileAlarms::Operand ProfileAlarms::ReadOperand(const JsonCursor& alarm, const char* side) {
    Operand operand{alarm.At(side)};
    if (!alarm->contains(side)) {
        operand.operand = std::make_shared<ConstantComputedAlarmOperand>(side, nullptr);
    } else if (operand.place.Has("previous")) {
        operand.operand =
            std::make_shared<PreviousMeasurementComputedAlarmOperand>(side, operand.place.At("previous").Text());
    } else if (operand.place->contains("object")) {
        ReadObject(side, operand);
    } else {
        ReadElement(side, operand);
    }
    return operand;
}

void ProfileAlarms::ReadElement(const std::string& name, Operand& operand) {
    const auto element = mElements.Get(operand.place);
    if (!element) {
        return;
    }
    operand.kind = element->kind;
    if (element->constant) {
        operand.operand = std::make_shared<ConstantComputedAlarmOperand>(name, *element->constant);
        return;
    }
    const auto adapter = std::make_shared<DataObjectAdapter>("", "");
    adapter->SetAdapter(AttributeAdapterType::VALUE, element->adapter);
    operand.operand = std::make_shared<MeasurementComputedAlarmOperand>(name, adapter);
}

void ProfileAlarms::ReadObject(const std::string& name, Operand& operand) const {
    const std::string object = operand.place.At("object").Text();
    const std::string alias = operand.place.At("alias").Text();
    const auto* const known = mObjects.Find(object, alias);
    if (!known) {
        operand.place.At("object").Error("there is no " + DescribeObject(object, alias) +
                                         Alternatives(object, mObjects.GetNames()));
    } else if (!known->adapter && !known->faulty) {
        operand.place.At("object").Error(
            "this object cannot be an operand; allowed: objects with one value and its quality");
    } else if (known->adapter) {
        operand.kind = known->kind;
        operand.operand = std::make_shared<MeasurementComputedAlarmOperand>(name, known->adapter);
    }
}

void ProfileAlarms::CheckPrevious(const JsonCursor& alarm, const Operand& operand, const Operand& opposite) {
    if (!operand.Is(PREVIOUS) || !alarm.Has("name")) {
        return;
    }
    if (opposite.operand && !opposite.Is(ComputedAlarmOperandType::MEASUREMENT)) {
        operand.place.Error("the opposite operand of a \"previous\" value must be a measurement");
    }
    const std::string record = alarm.At("name").Text() + *operand.operand->GetPreviousValueName();
    const auto [earlier, isNew] = mRecords.try_emplace(record, alarm);
    if (!isNew) {
        operand.place.Error("the previous value would be kept under the name " + Quoted(record) +
                            ", like that of the alarm on line " + std::to_string(earlier->second.GetLine()) +
                            "; rename one of the alarms or \"previous\" values");
    }
}

void ProfileAlarms::Keep(const JsonCursor& place, LoadedProfile::Alarm alarm) {
    const bool isNew = mComputed.emplace(DeviceModel::Key(alarm.name, alarm.alias), alarm.element).second;
    if (!isNew || mObjects.Find(alarm.name, alarm.alias)) {
        place.Error("the " + DescribeObject(alarm.name, alarm.alias) +
                    " is already defined; give each alarm its own \"alias\"");
    }
    mPlaces[alarm.element.get()] = PlaceOf(place);
    mAlarms.push_back(std::move(alarm));
}

}  // namespace kzm::ModbusGateway
