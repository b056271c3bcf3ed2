#pragma once

#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <shared_mutex>
#include <string>

#include "kz/orba/StatusCode.h"

namespace kzm::edm::dictionary {

// Values of labels by scope. Threads may look labels up while another adds some; a look-up copies no key.
class LabelTable {
public:
    kz::orba::StatusCode Find(const std::string& scope, const std::string& label, nlohmann::json& value) const {
        const std::shared_lock lock(mMutex);
        const auto labels = mValues.find(scope);
        if (labels == mValues.end()) {
            return kz::orba::StatusCode::NOT_FOUND;
        }
        const auto found = labels->second.find(label);
        if (found == labels->second.end()) {
            return kz::orba::StatusCode::NOT_FOUND;
        }
        value = found->second;
        return kz::orba::StatusCode::OK;
    }

    void Set(const std::string& scope, const std::string& label, const nlohmann::json& value) {
        const std::unique_lock lock(mMutex);
        mValues[scope].insert_or_assign(label, value);
    }

private:
    mutable std::shared_mutex mMutex;
    std::map<std::string, std::map<std::string, nlohmann::json>> mValues;
};

}  // namespace kzm::edm::dictionary
