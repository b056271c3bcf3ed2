#pragma once

#include <new>
#include <string_view>
#include <vector>

#include "DataModel/StepObserver.h"
#include "DeviceCache/CacheReadAccessInterface.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/diagnosis/Explanation.h"

namespace kzm::ModbusGateway {

// Makes an explanation of the steps of one request. Used by the thread of the request.
class ExplanationBuilder final : public ModbusDeviceModel::DataModel::StepObserver {
public:
    // `profile` may be null. All must outlive the builder.
    ExplanationBuilder(const ModbusDeviceModel::Device::IDeviceModel& model, const LoadedProfile* profile,
                       const ModbusDeviceModel::DeviceCache::CacheReadAccessInterface* cache, const void* subject);

    void Enter(std::string_view role, const void* subject) noexcept override;
    void See(const ModbusDeviceModel::DataModel::Step& step) noexcept override;
    void Leave(const ModbusDeviceModel::DataModel::PartOutcome* outcome) noexcept override;

    // The outermost part, closed with the outcome of the request. Throws std::bad_alloc if memory ran short.
    Explanation Finish(const ModbusDeviceModel::DataModel::PartOutcome& outcome);

private:
    // Once memory ran short, what is left of the request is not kept: its parts could no longer be told apart.
    template <typename Action>
    void UnlessFailed(Action action) noexcept {
        try {
            if (!mFailed) {
                action();
            }
        } catch (const std::bad_alloc&) {
            mFailed = true;
        }
    }
    void Keep(const ModbusDeviceModel::DataModel::Step& step);
    void KeepFrame(const ModbusDeviceModel::DataModel::Step& step);
    void KeepRegisters(const ModbusDeviceModel::DataModel::ElementData& element);
    void Close(const ModbusDeviceModel::DataModel::PartOutcome& outcome);
    Explanation& Innermost() { return *mOpen.back(); }
    std::string NameOfFrame(std::uint8_t frameIndex) const;
    std::shared_ptr<const ProfilePlace> PlaceOf(const void* subject) const;

    const ModbusDeviceModel::Device::IDeviceModel& mModel;
    const LoadedProfile* mProfile;
    const RegisterCache* mRegisterCache;  // null for a cache of another class
    Explanation mRoot;
    std::vector<Explanation*> mOpen;  // from the outermost to the innermost
    bool mFailed = false;             // memory ran short
};

}  // namespace kzm::ModbusGateway
