#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "Export.h"
#include "kz/orba/StatusCode.h"

namespace kzm::ModbusDeviceModel {

// The JSON type that a chain's parameter must have. Null, arrays and binary values are never accepted, and any other
// number accepts nothing.
enum ProcessingChainOperandType : std::uint32_t {
    OBJECT = 0,
    NUMBER = 1,   // integer or floating point
    INTEGER = 2,  // signed or unsigned
    BOOLEAN = 3,
    STRING = 4,
};

// A computation over named JSON values. The concrete computation is a derived class, which the builder of a device
// model supplies; a chain may be shared by several processors and alarms and runs on many threads at once.
class KZM_MODBUS_EXPORT ProcessingChain {
public:
    // Each signature maps a parameter's key to its type; parameters must satisfy one of them.
    using Signature = std::map<std::string, ProcessingChainOperandType>;

    // "value": the usual key of a chain's one parameter and of its result.
    static const std::string JSON_VALUE_PARAMETER;

    // `hasEnumOutput`: the result is an enumeration label that is to be translated.
    ProcessingChain(std::vector<Signature> signatures, std::string name, bool hasEnumOutput);
    virtual ~ProcessingChain();

    // Verifies the parameters and computes. A failed verification is logged as an error and leaves `result` untouched;
    // otherwise the computation's own status is returned, with `result` as the computation left it.
    kz::orba::StatusCode Execute(const nlohmann::json& parameters, nlohmann::json& result) const;

    // 0 when one signature is satisfied; keys beyond it are allowed. 28: there is no signature, or a value has the
    // wrong type. A missing key: the platform's status. Of several failures the last one counts.
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
