#include "kzm/pdm/Device/PdmElement.h"

#include <algorithm>
#include <string_view>

namespace kzm::pdm::Device {

namespace {

struct Identification {
    std::string_view pdmId;
    std::string_view shortId;
    std::string_view pdmName;

    std::string VortaName() const { return "PhysicalIdentification." + std::string(pdmName); }
};

// clang-format off
constexpr Identification ELEMENTS[] = {
    {"LPHD1_HwRev",     "38d", "HardwareRevision"},
    {"LPHD1_ProdCode",  "38f", "ProductCode"},
    {"LPHD1_ProdFam",   "390", "ProductFamily"},
    {"LPHD1_ProdId",    "391", "ProductId"},
    {"LPHD1_ProdModel", "392", "ProductModel"},
    {"LPHD1_ProdRange", "393", "ProductRange"},
    {"LPHD1_SerNum",    "394", "SerialNumber"},
    {"LPHD1_UserApp",   "395", "UserApplicationName"},
    {"LPHD1_Vendor",    "396", "VendorName"},
};
// clang-format on

// Null if no element has the id in one of the members.
template <typename... Member>
const Identification* Find(std::string_view id, Member... members) {
    const auto* found = std::find_if(std::begin(ELEMENTS), std::end(ELEMENTS),
                                     [&](const Identification& element) { return ((element.*members == id) || ...); });
    return found == std::end(ELEMENTS) ? nullptr : found;
}

const Identification* FindEither(std::string_view id) {
    return Find(id, &Identification::pdmId, &Identification::shortId);
}

}  // namespace

bool PdmElement::IsPdmElement(const std::string& id) {
    return FindEither(id) != nullptr;
}

bool PdmElement::CheckIdElement(const std::string& id) {
    return Find(id, &Identification::pdmId) != nullptr;
}

bool PdmElement::CheckIdVortaElement(const std::string& id) {
    return Find(id, &Identification::shortId) != nullptr;
}

std::string PdmElement::GetVortaIdentificationElement(const std::string& id) {
    const Identification* element = FindEither(id);
    return element == nullptr ? std::string() : element->VortaName();
}

std::string PdmElement::GetPdmIdentificationName(const std::string& id) {
    const Identification* element = FindEither(id);
    return std::string(element == nullptr ? "" : element->pdmName);
}

std::string PdmElement::GetVortaIdForPdmId(const std::string& pdmId) {
    const Identification* element = Find(pdmId, &Identification::pdmId);
    return std::string(element == nullptr ? "" : element->shortId);
}

}  // namespace kzm::pdm::Device
