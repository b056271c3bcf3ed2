#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <set>
#include <string>

#include "DataModel/ComputedAlarmPreviousMeasurement.h"
#include "DeviceCache/CacheReadAccessInterface.h"
#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel::DataModel {

// Where an operand comes from.
enum class ComputedAlarmOperandType : std::int32_t {
    CONSTANT = 0,              // a value that never changes
    MEASUREMENT = 1,           // the register cache
    PREVIOUS_MEASUREMENT = 2,  // the caller's map of previous values
};

// One side of the comparison of a computed alarm. Immutable; may be evaluated on many threads at once. Never logs.
class KZM_MODBUS_EXPORT ComputedAlarmOperand {
public:
    virtual ~ComputedAlarmOperand();

    // The indexes of the frames that the operand reads; nullopt unless it is a measurement.
    virtual std::optional<std::set<std::uint8_t>> GetFrameIndexes() const;
    // The name under which the earlier value is stored; nullopt unless the operand is a previous measurement.
    virtual std::optional<std::string> GetPreviousValueName() const;
    // SUCCESS: `quality` and `value` are set. NOT_AVAILABLE: the value is missing; the outputs are untouched except for
    // what reading the cache left in them.
    virtual kz::orba::StatusCode GetValue(const std::shared_ptr<DeviceCache::CacheReadAccessInterface>& cache,
                                          bool deviceBigEndian, bool ignoreCacheAge,
                                          const PreviousMeasurements& previous, const std::string& alarmName,
                                          DeviceCache::_Quality_t& quality, nlohmann::json& value) const = 0;

    // The key of the operand's value in the parameters of the alarm's processing chain.
    const std::string& GetName() const { return mName; }
    // Where the operand comes from.
    ComputedAlarmOperandType GetType() const { return mType; }

protected:
    // `name`: the key in the parameters of the chain.
    ComputedAlarmOperand(std::string name, ComputedAlarmOperandType type);

private:
    std::string mName;
    ComputedAlarmOperandType mType;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
