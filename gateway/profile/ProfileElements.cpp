#include "gateway/profile/ProfileElements.h"

#include <algorithm>

#include "DataModel/AttributeConstant.h"
#include "DataModel/AttributeProcessor.h"
#include "gateway/model/ElementPrecision.h"
#include "gateway/model/ScaledPowerAdapter.h"
#include "gateway/profile/ProfileChains.h"
#include "kzm/edm/dictionary/EdmEnumToEdmValue.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::ProcessingChainOperandType;
using ModbusDeviceModel::DataModel::AttributeConstant;
using ModbusDeviceModel::DataModel::AttributeProcessor;
using ModbusDeviceModel::DeviceProfile::Family;

ProfileElements::ProfileElements(const JsonCursor& section, ProfileFrames& frames, ProfileEnumerations& enumerations,
                                 const ChainRegistry& chains)
    : mFrames(frames), mEnumerations(enumerations), mChains(chains) {
    section.ForEach([this](const std::string& name, const JsonCursor& place) { mNamed.emplace(name, Named{place}); });
    for (auto& [name, named] : mNamed) {
        ReadNamed(name, named);
    }
}

ProfileElements::Element ProfileElements::Get(const JsonCursor& role) {
    return MarkFrames(Resolve(role));
}

ProfileElements::Element ProfileElements::Get(const std::string& name) {
    Named& named = mNamed.at(name);
    named.used = true;
    return MarkFrames(named.element);
}

ProfileElements::Element ProfileElements::MarkFrames(Element element) {
    if (element) {
        for (const std::uint8_t frame : element->frames) {
            mFrames.MarkUsed(frame);
        }
    }
    return element;
}

ProfileElements::Element ProfileElements::Resolve(const JsonCursor& role) {
    return role->is_string() ? GetNamed(role) : Read(role);
}

std::shared_ptr<const ProfileRegisters> ProfileElements::GetRegisters(const JsonCursor& role) {
    const Element element = Get(role);
    if (!element) {
        return nullptr;
    }
    if (!element->registers) {
        role.Error("registers are needed here; allowed: an element with \"address\" and \"type\", or the name of one");
        return nullptr;
    }
    return {element, &*element->registers};
}

// The named element, marked as used; an unknown one is reported.
std::map<std::string, ProfileElements::Named>::iterator ProfileElements::Find(const JsonCursor& role) {
    const auto found = mNamed.find(role.Text());
    if (found != mNamed.end()) {
        found->second.used = true;
        return found;
    }
    Names names;
    for (const auto& known : mNamed) {
        names.push_back(known.first);
    }
    role.Error("there is no element " + Quoted(role.Text()) + " under \"elements\"" + Alternatives(role.Text(), names));
    return found;
}

ProfileElements::Element ProfileElements::GetNamed(const JsonCursor& role) {
    const auto found = Find(role);
    if (found == mNamed.end()) {
        return nullptr;
    }
    auto& [name, named] = *found;
    if (std::find(mOpen.begin(), mOpen.end(), name) != mOpen.end()) {
        ReportCycle(role);
        return nullptr;
    }
    ReadNamed(name, named);
    return named.element;
}

void ProfileElements::ReadNamed(const std::string& name, Named& named) {
    if (named.read) {
        return;
    }
    mOpen.push_back(name);
    named.element = Read(named.place, name);
    named.read = true;
    mOpen.pop_back();
}

void ProfileElements::ReportCycle(const JsonCursor& role) const {
    std::string cycle;
    for (auto name = std::find(mOpen.begin(), mOpen.end(), role.Text()); name != mOpen.end(); ++name) {
        cycle += Quoted(*name) + " needs ";
    }
    role.Error("the element needs itself: " + cycle + Quoted(role.Text()));
}

ProfileElements::Element ProfileElements::Read(const JsonCursor& place, const std::string& name) {
    std::shared_ptr<ProfileElement> element;
    const bool tooDeep = mDepth == MAX_COST;
    if (!tooDeep) {
        ++mDepth;
        element = ReadAny(place);
        --mDepth;
    }
    if (tooDeep || (element && element->cost > MAX_COST)) {
        place.Error("reading this element takes more than " + std::to_string(MAX_COST) + " elements and computations");
        return nullptr;
    }
    if (element) {
        mLabels.insert(element->labels.begin(), element->labels.end());
        KeepPlace(place, name, *element);
    }
    return element;
}

void ProfileElements::KeepPlace(const JsonCursor& place, const std::string& name, const ProfileElement& element) {
    const auto kept = PlaceOf(place, name);
    if (place.Has("enumeration")) {
        kept->lines["labels"] = mEnumerations.GetLine(place.At("enumeration").Text());
    }
    mPlaces[element.adapter.get()] = kept;
}

std::shared_ptr<ProfileElement> ProfileElements::ReadAny(const JsonCursor& place) {
    if (place->contains("constant")) {
        return ReadConstant(place);
    }
    return place->contains("chain") ? ReadComputation(place) : ReadElement(place);
}

std::shared_ptr<ProfileElement> ProfileElements::ReadConstant(const JsonCursor& place) const {
    auto element = std::make_shared<ProfileElement>();
    element->constant = &(*place)["constant"];
    element->kind = KindOf(*element->constant);
    element->adapter = std::make_shared<AttributeConstant>(*element->constant);
    return element;
}

std::shared_ptr<ProfileElement> ProfileElements::ReadElement(const JsonCursor& place) {
    auto element = std::make_shared<ProfileElement>();
    element->registers = ProfileRegisters::Read(place, mFrames, mEnumerations);
    const auto& registers = element->registers;
    if (!registers) {
        return nullptr;
    }
    element->kind = KindOf(*registers->type);
    element->precision =
        PrecisionOf(ModbusDeviceModel::LogicCodeIdentifier{registers->type->code}, registers->scale, registers->offset);
    element->labels = registers->GetLabels();
    element->frames = {registers->frame};
    if (registers->type->family == Family::SCALED_POWER) {
        if (!ReadScaledPower(place, *registers, *element)) {
            return nullptr;
        }
    } else {
        element->adapter = registers->MakeConverter();
        if (place.Has("exponent")) {
            place.At("exponent").Error("values of the type " + Quoted(registers->type->name) + " have no exponent");
        }
    }
    element->adapter->GetClassName(element->className);
    return element;
}

// False for a faulty exponent, which is reported.
bool ProfileElements::ReadScaledPower(const JsonCursor& place, const ProfileRegisters& registers,
                                      ProfileElement& element) {
    const JsonCursor role = place.At("exponent");
    if (!place->contains("exponent")) {
        place.Error("the type " + Quoted(registers.type->name) + " needs an \"exponent\"");
    }
    const Element exponent = Resolve(role);
    if (!exponent) {
        return false;
    }
    if (!MayBe(exponent->kind, ProcessingChainOperandType::NUMBER)) {
        role.Error("this element cannot be the \"exponent\"; needed: a whole number");
    }
    element.frames.insert(exponent->frames.begin(), exponent->frames.end());
    element.cost += exponent->cost;
    element.adapter = std::make_shared<ScaledPowerAdapter>(registers.MakeScaledPower(), exponent->adapter);
    return true;
}

std::shared_ptr<ProfileElement> ProfileElements::ReadComputation(const JsonCursor& place) {
    auto element = std::make_shared<ProfileElement>();
    AttributeProcessor::Inputs adapters;
    ChainInputsByName inputs;
    Names names;
    bool allFloats = true;
    place.At("inputs").ForEach([&](const std::string& name, const JsonCursor& role) {
        names.push_back(name);
        if (const Element input = Resolve(role)) {
            adapters.emplace(name, input->adapter);
            inputs.emplace(name, ChainInput{role, input->kind});
            element->frames.insert(input->frames.begin(), input->frames.end());
            element->cost += input->cost;
            allFloats = allFloats && (input->constant || input->precision == NumberPrecision::FLOAT);
        }
    });
    if (names.empty() || !place.Has("chain")) {
        return nullptr;  // already reported
    }
    auto made = ChainFactory::Make(place.At("chain").Text(), names, *place.At("settings"), mChains);
    ReportFaults(place, made);
    if (!made.chain || adapters.size() < names.size()) {
        return nullptr;
    }
    CheckInputKinds(made, inputs);
    element->kind = KindOf(made.result);
    // A computation is no more precise than its inputs.
    element->precision = allFloats && !element->frames.empty() ? NumberPrecision::FLOAT : NumberPrecision::DIGITS_15;
    element->className = ClassNameOf(made.result);
    element->labels = std::move(made.labels);
    element->adapter = std::make_shared<AttributeProcessor>(adapters, std::move(made.chain));
    return element;
}

void ProfileElements::ReportUnused() const {
    for (const auto& [name, named] : mNamed) {
        if (!named.used) {
            named.place.Warning("no object uses the element " + Quoted(name));
        }
    }
}

void ProfileElements::PublishLabels() const {
    for (const auto& label : mLabels) {
        kzm::edm::dictionary::EdmEnumToEdmValue::SetLabel(label, label);
    }
}

}  // namespace kzm::ModbusGateway
