#include "gateway/diagnosis/ExplanationBuilder.h"

#include "DataModel/ElementData.h"
#include "DeviceProfile/LogicCodeTable.h"
#include "Support/Status.h"
#include "gateway/diagnosis/DecidingReason.h"
#include "gateway/diagnosis/StepTable.h"

namespace kzm::ModbusGateway {

using namespace ModbusDeviceModel::DataModel;
using Kind = Explanation::Kind;
namespace DeviceCache = ModbusDeviceModel::DeviceCache;

namespace {

std::size_t LineOf(const ProfilePlace* place, StepKind kind) {
    for (const char* const member : RowOf(kind).causes) {
        const auto found = place ? place->lines.find(member) : std::map<std::string, std::size_t>::const_iterator();
        if (place && found != place->lines.end()) {
            return found->second;
        }
    }
    return 0;
}

// The registers of some types are swapped because of their type, whatever the order says.
StepKind CauseOf(const Explanation& part, StepKind kind) {
    const auto code = part.registers ? part.registers->logicCode : std::uint8_t{0};
    const auto& row = ModbusDeviceModel::DeviceProfile::RowOf(ModbusDeviceModel::LogicCodeIdentifier{code});
    return kind == StepKind::SWAPPED && row.wordsAlwaysSwapped ? StepKind::GATHERED : kind;
}

// Negative: in the future.
std::int64_t AgeOf(const Step& step) {
    return static_cast<std::int64_t>(step.now - step.timestamp);
}

}  // namespace

ExplanationBuilder::ExplanationBuilder(const ModbusDeviceModel::Device::IDeviceModel& model,
                                       const LoadedProfile* profile, const DeviceCache::CacheReadAccessInterface* cache,
                                       const void* subject)
    : mModel(model), mProfile(profile), mRegisterCache(dynamic_cast<const RegisterCache*>(cache)), mOpen{&mRoot} {
    mRoot.place = PlaceOf(subject);
}

void ExplanationBuilder::Enter(std::string_view role, const void* subject) noexcept {
    UnlessFailed([&] {
        Explanation& part = Innermost().parts.emplace_back();
        mOpen.push_back(&part);
        part.role = role;
        part.place = PlaceOf(subject);
    });
}

void ExplanationBuilder::See(const Step& step) noexcept {
    UnlessFailed([&] { Keep(step); });
}

void ExplanationBuilder::Leave(const PartOutcome* outcome) noexcept {
    UnlessFailed([&] {
        if (outcome == nullptr) {
            Keep({.kind = StepKind::FAILURE, .reason = Reason::INTERNAL});
        }
        Close(outcome ? *outcome
                      : PartOutcome{ModbusDeviceModel::Status::NOT_AVAILABLE, DeviceCache::QUALITY_BAD, nullptr});
        mOpen.pop_back();
    });
}

Explanation ExplanationBuilder::Finish(const PartOutcome& outcome) {
    if (mFailed) {
        throw std::bad_alloc();
    }
    Close(outcome);
    mRoot.requestStatus = outcome.status;
    return std::move(mRoot);
}

void ExplanationBuilder::Keep(const Step& step) {
    Explanation& part = Innermost();
    const auto kind = RowOf(step.kind).part;
    if (kind && part.kind == Kind::OTHER) {
        part.kind = *kind;
        part.name = step.text;
    }
    if (step.element != nullptr) {
        KeepRegisters(*step.element);
    }
    if (step.kind == StepKind::FRAME) {
        KeepFrame(step);
    }
    Explanation::Step kept{step.kind, step.reason, step.applied};
    kept.bytes.assign(step.bytes.begin(), step.bytes.end());
    kept.mask.assign(step.mask.begin(), step.mask.end());
    kept.text = step.text;
    if (step.kind == StepKind::RECEIVED) {
        kept.value = ConvertToString(step.quality);
    } else if (step.value != nullptr) {
        kept.value = *step.value;
    }
    kept.number = step.kind == StepKind::PREVIOUS ? static_cast<double>(AgeOf(step)) : step.number;
    kept.factor = step.factor;
    kept.offset = step.offset;
    kept.low = step.low;
    kept.high = step.kind == StepKind::PREVIOUS ? static_cast<double>(step.limit) : step.high;
    kept.line = LineOf(part.place.get(), CauseOf(part, step.kind));
    part.steps.push_back(std::move(kept));
    if (step.kind == StepKind::VALUE) {
        part.status = step.status;
        part.quality = step.quality;
        part.value = step.value ? *step.value : nlohmann::json();
    }
}

void ExplanationBuilder::KeepRegisters(const ElementData& element) {
    Explanation::Registers registers;
    const auto& row = ModbusDeviceModel::DeviceProfile::RowOf(element.GetLogicCode());
    registers.address = element.GetDeviceRegister();
    registers.count = element.GetNumberOfRegisters();
    registers.type = row.name;
    registers.logicCode = static_cast<std::uint8_t>(element.GetLogicCode());
    registers.frameIndex = element.GetFrameIndex();
    registers.frame = NameOfFrame(registers.frameIndex);
    const auto& frames = mModel.GetFrames();
    if (registers.frameIndex < frames.size()) {
        registers.function = frames[registers.frameIndex].mFunctionCode;
        if (mRegisterCache != nullptr) {
            registers.exception = mRegisterCache->GetException(registers.frameIndex);
        }
    }
    Innermost().registers = std::move(registers);
}

void ExplanationBuilder::KeepFrame(const Step& step) {
    auto& registers = Innermost().registers;
    if (registers) {
        registers->timestamp = step.timestamp;
        registers->limit = step.limit;
        registers->ignoresAge = !step.applied;
        if (step.timestamp != 0) {
            registers->age = AgeOf(step);
        }
    }
}

void ExplanationBuilder::Close(const PartOutcome& outcome) {
    Explanation& part = Innermost();
    const bool hasValueStep = !part.steps.empty() && part.steps.back().kind == StepKind::VALUE;
    if (!hasValueStep) {
        part.status = outcome.status;
        part.quality = outcome.quality;
        part.value = outcome.value ? *outcome.value : nlohmann::json();
    }
    if (part.status != ModbusDeviceModel::Status::SUCCESS) {
        part.value = nullptr;
        part.quality = part.kind == Kind::OBJECT ? DeviceCache::QUALITY_BAD : part.quality;
    }
    part.why = DecidingReason(part);
}

std::string ExplanationBuilder::NameOfFrame(std::uint8_t frameIndex) const {
    const bool isNamed = mProfile != nullptr && frameIndex < mProfile->frameNames.size();
    return isNamed ? mProfile->frameNames[frameIndex] : std::to_string(frameIndex);
}

std::shared_ptr<const ProfilePlace> ExplanationBuilder::PlaceOf(const void* subject) const {
    if (mProfile == nullptr) {
        return nullptr;
    }
    const auto found = mProfile->places.find(subject);
    return found == mProfile->places.end() ? nullptr : found->second;
}

}  // namespace kzm::ModbusGateway
