#include "edm/modbus/StringCleaner.h"

#include "kzm/Vorta/VortaId.h"

namespace kzm::edm::modbus {

using kzm::Vorta::VortaId;

StringCleaner::StringCleaner(std::string_view prefix) : mPrefix(prefix) {}

void StringCleaner::Encode(std::string& text) const {
    text = mPrefix + VortaId::EncodeCustomAlias(text);
}

void StringCleaner::Decode(std::string& text) const {
    text = VortaId::DecodeAliasSuffix(text.substr(mPrefix.size()));
}

}  // namespace kzm::edm::modbus
