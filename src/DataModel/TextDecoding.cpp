#include <algorithm>
#include <utility>

#include "DataModel/ElementData.h"

namespace kzm::ModbusDeviceModel::DataModel {

namespace {

constexpr const char* REPLACEMENT_CHARACTER = "\xEF\xBF\xBD";

// Bytes that a lead byte announces; 0 for a byte that cannot lead.
unsigned int AnnouncedLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if ((lead & 0xE0) == 0xC0) {
        return 2;
    }
    if ((lead & 0xF0) == 0xE0) {
        return 3;
    }
    return (lead & 0xF8) == 0xF0 ? 4 : 0;
}

}  // namespace

bool ElementData::CheckUTF8Validity(std::string& text, unsigned int& position, unsigned int& length) {
    if (position >= text.size()) {
        length = 1;
        return false;
    }
    const unsigned int announced = AnnouncedLength(static_cast<unsigned char>(text[position]));
    length = announced == 0 ? 1 : announced;
    for (unsigned int i = 1; i < announced; ++i) {
        if (position + i >= text.size() || (static_cast<unsigned char>(text[position + i]) & 0xC0) != 0x80) {
            return false;
        }
    }
    return announced != 0;
}

void ElementData::SanitiseUTF8Sequence(std::string& text) {
    if (std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        return;
    }
    std::string repaired;
    repaired.reserve(text.size());
    unsigned int length = 1;
    for (unsigned int position = 0; position < text.size(); position += length) {
        if (CheckUTF8Validity(text, position, length)) {
            repaired.append(text, position, length);
        } else {
            repaired.append(REPLACEMENT_CHARACTER);
            length = 1;
        }
    }
    text = std::move(repaired);
}

}  // namespace kzm::ModbusDeviceModel::DataModel
