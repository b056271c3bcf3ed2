#include "kzm/Json/Parser.h"

#include <nlohmann/json.hpp>

namespace kzm::Json {

kz::orba::StatusCode Parser::CheckAndParse(const nlohmann::json& parameters, const std::string& key,
                                           nlohmann::json& value) {
    const auto found = parameters.find(key);
    if (found == parameters.end()) {
        return kz::orba::StatusCode::NOT_FOUND;
    }
    value = *found;
    return kz::orba::StatusCode::OK;
}

}  // namespace kzm::Json
