#include "kzm/edm/dictionary/EdmEnumToEdmValue.h"

#include "kzm/edm/dictionary/LabelTable.h"

namespace kzm::edm::dictionary {

namespace {

const std::string EVERY_ATTRIBUTE;

LabelTable& Table() {
    static LabelTable table;
    return table;
}

}  // namespace

kz::orba::StatusCode EdmEnumToEdmValue::ConvertEdmEnumToEdmValue(const std::string& label, nlohmann::json& value) {
    return Table().Find(EVERY_ATTRIBUTE, label, value);
}

void EdmEnumToEdmValue::SetLabel(const std::string& label, const nlohmann::json& value) {
    Table().Set(EVERY_ATTRIBUTE, label, value);
}

}  // namespace kzm::edm::dictionary
