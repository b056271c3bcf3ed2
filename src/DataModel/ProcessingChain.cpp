#include "DataModel/ProcessingChain.h"

#include <utility>

#include "Support/Log.h"
#include "Support/Status.h"
#include "kzm/Json/Parser.h"

namespace kzm::ModbusDeviceModel {

namespace {

constexpr const char* LOG_MODULE = "ModbusDeviceModel::ProcessingChain";
constexpr const char* VERIFY = "__VerifyParameters";

kz::orba::StatusCode VerifySignature(const ProcessingChain& chain, const ProcessingChain::Signature& signature,
                                     const nlohmann::json& parameters) {
    for (const auto& [key, type] : signature) {
        nlohmann::json value;
        const auto status = Json::Parser::CheckAndParse(parameters, key, value);
        if (status != Status::SUCCESS) {
            KZM_LOG(INFORMATION, "[%s][%s] Missing key=%s in parameters=%s", VERIFY, chain.GetName().c_str(),
                    key.c_str(), Logging::Text(parameters).c_str());
            return status;
        }
        if (!chain.__CheckJsonValueType(value, type)) {
            KZM_LOG(INFORMATION, "[%s][%s] Error checking value type (expected=%u), key=%s, value=%s / %s", VERIFY,
                    chain.GetName().c_str(), static_cast<unsigned>(type), key.c_str(), Logging::Text(value).c_str(),
                    Logging::Text(parameters).c_str());
            return Status::OUT_OF_RANGE;
        }
    }
    return Status::SUCCESS;
}

}  // namespace

const std::string ProcessingChain::JSON_VALUE_PARAMETER = "value";

ProcessingChain::ProcessingChain(std::vector<Signature> signatures, std::string name, bool hasEnumOutput)
    : mSignatures(std::move(signatures)), mName(std::move(name)), mHasEnumOutput(hasEnumOutput) {}

ProcessingChain::~ProcessingChain() = default;

kz::orba::StatusCode ProcessingChain::Execute(const nlohmann::json& parameters, nlohmann::json& result) const {
    auto status = __VerifyParameters(parameters);
    if (status != Status::SUCCESS) {
        KZM_LOG(ERROR, "[%s][%s] Error verifying parameters. Status code: %s, parameters: %s", __func__, mName.c_str(),
                Logging::Text(status).c_str(), Logging::Text(parameters).c_str());
        return status;
    }
    status = Process(parameters, result);
    KZM_LOG_TRACE("[%s][%s] Processing chain executed, status code:%s, parameters:%s, result:%s", __func__,
                  mName.c_str(), Logging::Text(status).c_str(), Logging::Text(parameters).c_str(),
                  Logging::Text(result).c_str());
    return status;
}

kz::orba::StatusCode ProcessingChain::__VerifyParameters(const nlohmann::json& parameters) const {
    auto status = Status::OUT_OF_RANGE;
    for (const Signature& signature : mSignatures) {
        status = VerifySignature(*this, signature, parameters);
        if (status == Status::SUCCESS) {
            break;
        }
    }
    return status;
}

bool ProcessingChain::__CheckJsonValueType(const nlohmann::json& value, ProcessingChainOperandType type) const {
    switch (type) {
        case ProcessingChainOperandType::OBJECT:
            return value.is_object();
        case ProcessingChainOperandType::NUMBER:
            return value.is_number();
        case ProcessingChainOperandType::INTEGER:
            return value.is_number_integer();
        case ProcessingChainOperandType::BOOLEAN:
            return value.is_boolean();
        case ProcessingChainOperandType::STRING:
            return value.is_string();
    }
    return false;
}

}  // namespace kzm::ModbusDeviceModel
