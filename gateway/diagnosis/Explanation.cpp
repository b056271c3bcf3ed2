#include "gateway/diagnosis/Explanation.h"

#include "gateway/diagnosis/ExplanationBuilder.h"
#include "kz/orba/VortaORBAObject.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DataModel::ObservedRequest;
using ModbusDeviceModel::DataModel::PartOutcome;
using ModbusDeviceModel::DataModel::PreviousMeasurements;
using ModbusDeviceModel::Device::IDeviceModel;
using nlohmann::json;

namespace {

// What is asked for.
struct Subject {
    const IDeviceModel& model;
    const LoadedProfile* profile;  // may be null
    const void* address;           // of the adapter or alarm, for its place
};

template <typename Ask>
Explanation Run(const Subject& subject, const ExplainRequest& request, kz::orba::VortaORBAObject& object, Ask ask) {
    ExplanationBuilder builder(subject.model, subject.profile, request.cache.get(), subject.address);
    kz::orba::StatusCode status{};
    {
        const ObservedRequest observed(builder);
        status = ask(object);
    }
    Explanation explanation = builder.Finish({status, ModbusDeviceModel::DeviceCache::QUALITY_UNINITIALISED, nullptr});
    explanation.object = std::move(object.GetValue());
    return explanation;
}

Explanation ExplainObject(const Subject& subject, const ExplainRequest& request, kz::orba::VortaORBAObject object) {
    return Run(subject, request, object, [&](kz::orba::VortaORBAObject& target) {
        return subject.model.GetVortaObjectValue(request.cache, request.ignoreCacheAge, target);
    });
}

PreviousMeasurements CopyOf(const PreviousMeasurements& previous) {
    return previous ? std::make_shared<PreviousMeasurements::element_type>(*previous) : nullptr;
}

Explanation ExplainAlarmOf(const Subject& subject, const ExplainRequest& request, const PreviousMeasurements& previous,
                           kz::orba::VortaORBAObject object) {
    return Run(subject, request, object, [&](kz::orba::VortaORBAObject& target) {
        return subject.model.GetCustomAlarmVortaObjectValue(request.cache, request.ignoreCacheAge, target,
                                                            CopyOf(previous));
    });
}

}  // namespace

Explanation Explain(const LoadedProfile& profile, const LoadedProfile::Object& object, const ExplainRequest& request) {
    return ExplainObject({*profile.model, &profile, object.adapter.get()}, request,
                         {object.key, object.name, object.alias, object.structure});
}

Explanation Explain(const LoadedProfile& profile, const LoadedProfile::Alarm& alarm, const ExplainRequest& request,
                    const PreviousMeasurements& previous) {
    return ExplainAlarmOf({*profile.model, &profile, alarm.element.get()}, request, previous,
                          {"", alarm.name, alarm.alias, alarm.structure});
}

Explanation Explain(const IDeviceModel& model, const std::string& name, const std::string& alias,
                    const ExplainRequest& request, json object) {
    return ExplainObject({model, nullptr, nullptr}, request, {"", name, alias, std::move(object)});
}

Explanation ExplainAlarm(const IDeviceModel& model, const std::string& name, const std::string& alias,
                         const ExplainRequest& request, const PreviousMeasurements& previous, json object) {
    return ExplainAlarmOf({model, nullptr, nullptr}, request, previous, {"", name, alias, std::move(object)});
}

}  // namespace kzm::ModbusGateway
