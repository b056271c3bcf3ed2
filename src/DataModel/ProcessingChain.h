#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel {

// The JSON type that a parameter of a chain must have. Null, arrays and binary values are never accepted; a number that
// is not listed here accepts nothing.
enum ProcessingChainOperandType : std::uint32_t {
    OBJECT = 0,
    NUMBER = 1,   // integer or floating point
    INTEGER = 2,  // signed or unsigned
    BOOLEAN = 3,
    STRING = 4,
};

// A computation over named JSON values, defined by a derived class that the builder of a device model supplies. A chain
// may be shared by several processors and alarms and may run on many threads at once.
class KZM_MODBUS_EXPORT ProcessingChain {
public:
    // The type of each parameter by its key.
    using Signature = std::map<std::string, ProcessingChainOperandType>;

    // "value": the usual key of a chain's one parameter and of its result.
    static const std::string JSON_VALUE_PARAMETER;

    // `signatures`: parameters must satisfy one of them. `name`: for log lines. `hasEnumOutput`: the result is an
    // enumeration label, which an attribute processor translates.
    ProcessingChain(std::vector<Signature> signatures, std::string name, bool hasEnumOutput);
    virtual ~ProcessingChain();

    // Verifies the parameters, then computes. If the verification fails, its status is returned and logged as an error,
    // and `result` is untouched; otherwise the computation's own status is returned, with `result` as it left it.
    kz::orba::StatusCode Execute(const nlohmann::json& parameters, nlohmann::json& result) const;

    // SUCCESS if one signature is satisfied; further keys are allowed. Otherwise the status of the last signature:
    // OUT_OF_RANGE for a value of the wrong type, the platform's status for a missing key, each logged as information;
    // OUT_OF_RANGE if there is no signature.
    kz::orba::StatusCode __VerifyParameters(const nlohmann::json& parameters) const;
    // Whether the value has the type.
    bool __CheckJsonValueType(const nlohmann::json& value, ProcessingChainOperandType type) const;

    // What the constructor was given.
    const std::string& GetName() const { return mName; }
    bool HasEnumOutput() const { return mHasEnumOutput; }

private:
    virtual kz::orba::StatusCode Process(const nlohmann::json& parameters, nlohmann::json& result) const = 0;

    std::vector<Signature> mSignatures;
    std::string mName;
    bool mHasEnumOutput;
};

}  // namespace kzm::ModbusDeviceModel
