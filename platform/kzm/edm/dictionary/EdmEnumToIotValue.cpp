#include "kzm/edm/dictionary/EdmEnumToIotValue.h"

#include "kzm/edm/dictionary/LabelTable.h"

namespace kzm::edm::dictionary {

namespace {

LabelTable& Table() {
    static LabelTable table;
    return table;
}

}  // namespace

kz::orba::StatusCode EdmEnumToIotValue::ConvertEdmEnumToIotValue(const std::string& urn, const std::string& label,
                                                                 nlohmann::json& value) {
    return Table().Find(urn, label, value);
}

void EdmEnumToIotValue::SetLabel(const std::string& urn, const std::string& label, const nlohmann::json& value) {
    Table().Set(urn, label, value);
}

}  // namespace kzm::edm::dictionary
