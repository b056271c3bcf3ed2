#pragma once

#include "DataModel/ComputedAlarmOperand.h"
#include "DataModel/ProcessingChain.h"

namespace kzm::ModbusDeviceModel::DataModel {

// An alarm that the device does not report itself: a processing chain compares two operands. With a previous
// measurement as one operand it reports a change. Evaluations may run on many threads at once, each with its own map of
// previous values; no setter may run at the same time.
class KZM_MODBUS_EXPORT ComputedAlarmElement {
public:
    using Cache = std::shared_ptr<DeviceCache::CacheReadAccessInterface>;  // the gateway's register cache

    // `hasChangedAlarm`: the alarm is momentary: it reports a change instead of a state. `priority`: "LOW", "MEDIUM" or
    // "HIGH".
    ComputedAlarmElement(std::string name, bool hasChangedAlarm, std::string priority, std::string description,
                         std::string type, std::shared_ptr<ProcessingChain> processingChain,
                         std::shared_ptr<ComputedAlarmOperand> leftOperand,
                         std::shared_ptr<ComputedAlarmOperand> rightOperand);

    // As given to the constructor or to the setter last called.
    const std::string& GetName() const { return mName; }
    const std::string& GetDescription() const { return mDescription; }
    void SetDescription(const std::string& description) { mDescription = description; }
    const std::string& GetType() const { return mType; }
    void SetType(const std::string& type) { mType = type; }
    const std::string& GetPriority() const { return mPriority; }
    void SetPriority(const std::string& priority) { mPriority = priority; }
    bool IsHasChangedAlarm() const { return mHasChangedAlarm; }

    // Evaluates the alarm, then stores the measurement of an alarm that reports a change in `previous`, whatever the
    // outcome.
    //
    // SUCCESS: `value` is "Active" or "Inactive" and `quality` the combined quality of the operands; "Inactive" with
    // quality Bad while there is no usable previous value. Also SUCCESS, with `value` untouched and `quality` Bad, if
    // the chain does not give a boolean.
    // NOT_AVAILABLE: a measurement is Bad or missing. INVALID_ARGUMENT: an operand failed in another way, or an operand
    // or the chain is null. Any other: the chain's status. After these `value` is untouched and `quality` Bad.
    // Operands are logged as information, failures other than NOT_AVAILABLE as errors.
    kz::orba::StatusCode BuildVortaObjectValue(const Cache& cache, bool deviceBigEndian, bool ignoreCacheAge,
                                               const PreviousMeasurements& previous, DeviceCache::_Quality_t& quality,
                                               nlohmann::json& value);

    // Stores the measurement that a previous-measurement operand is compared with, if its status is SUCCESS. A null
    // `previous` is logged as an error.
    void UpdatePreviousValues(const nlohmann::json& leftValue, const DeviceCache::_Quality_t& leftQuality,
                              const kz::orba::StatusCode& leftStatus, const nlohmann::json& rightValue,
                              const DeviceCache::_Quality_t& rightQuality, const kz::orba::StatusCode& rightStatus,
                              const PreviousMeasurements& previous) const;

    // The frames of both operands.
    std::set<std::uint8_t> GetFrameIndexes();

    // Bad where one is Bad or Uninitialised; otherwise Questionable where one is Questionable; otherwise Good where
    // both are Good. Any other number beside Good or itself gives Bad.
    static DeviceCache::_Quality_t GetQualityFromOperands(const DeviceCache::_Quality_t& left,
                                                          const DeviceCache::_Quality_t& right);
    // Whether an operand cannot be used: its quality is Bad or its status NOT_AVAILABLE.
    static bool IsOperandQualityBadOrValueMissing(const DeviceCache::_Quality_t& quality,
                                                  const kz::orba::StatusCode& status);

private:
    std::string mName;
    bool mHasChangedAlarm;
    std::string mPriority;
    std::string mDescription;
    std::string mType;
    std::shared_ptr<ProcessingChain> mProcessingChain;
    std::shared_ptr<ComputedAlarmOperand> mLeftOperand;
    std::shared_ptr<ComputedAlarmOperand> mRightOperand;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
