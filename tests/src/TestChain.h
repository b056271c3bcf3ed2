#pragma once

#include <nlohmann/json.hpp>

#include "DataModel/ProcessingChain.h"

namespace kzm::ModbusDeviceModel::Test {

// A chain named "chain" that gives a fixed result, or its parameters where the result is null.
class TestChain : public ProcessingChain {
public:
    TestChain(std::vector<Signature> signatures, int status, nlohmann::json result, bool hasEnumOutput)
        : ProcessingChain(std::move(signatures), "chain", hasEnumOutput),
          mStatus(static_cast<kz::orba::StatusCode>(status)),
          mResult(std::move(result)) {}

private:
    kz::orba::StatusCode Process(const nlohmann::json& parameters, nlohmann::json& result) const override {
        result = mResult.is_null() ? parameters : mResult;
        return mStatus;
    }

    kz::orba::StatusCode mStatus;
    nlohmann::json mResult;
};

inline std::shared_ptr<ProcessingChain> MakeChain(std::vector<ProcessingChain::Signature> signatures, int status = 0,
                                                  nlohmann::json result = nullptr, bool hasEnumOutput = false) {
    return std::make_shared<TestChain>(std::move(signatures), status, std::move(result), hasEnumOutput);
}

}  // namespace kzm::ModbusDeviceModel::Test
