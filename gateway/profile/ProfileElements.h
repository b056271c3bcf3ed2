#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "DataModel/AttributeAdapter.h"
#include "gateway/chains/ChainRegistry.h"
#include "gateway/json/JsonCursor.h"
#include "gateway/json/NumberText.h"
#include "gateway/json/ProblemText.h"
#include "gateway/profile/ProfileEnumerations.h"
#include "gateway/profile/ProfileFrames.h"
#include "gateway/profile/ProfilePlaces.h"
#include "gateway/profile/ProfileRegisters.h"
#include "gateway/profile/ValueKind.h"

namespace kzm::ModbusGateway {

// What fills an attribute of an object: an element of the device, a computation, or a constant.
struct ProfileElement {
    std::shared_ptr<ModbusDeviceModel::DataModel::AttributeAdapter> adapter;
    ValueKind kind = ValueKind::OTHER;
    NumberPrecision precision = NumberPrecision::DOUBLE;  // if it is a number
    std::string className;                                // empty for a constant
    const nlohmann::json* constant = nullptr;             // null for anything else
    std::optional<ProfileRegisters> registers;            // only of an element of the device
    Names labels;                                         // that it can give
    std::set<std::uint8_t> frames;
    std::size_t cost = 1;  // elements and computations that one value takes
};

// The section "elements" of a device profile, and the elements that are defined where they are used.
class ProfileElements {
public:
    using Element = std::shared_ptr<const ProfileElement>;

    // The most elements and computations that one value may take.
    static constexpr std::size_t MAX_COST = 256;

    // Reads the section and reports what is wrong with it. The other sections and the chains must outlive this one.
    ProfileElements(const JsonCursor& section, ProfileFrames& frames, ProfileEnumerations& enumerations,
                    const ChainRegistry& chains);

    // What fills a role: the element that it names, or the one defined there. Null if there is no such role, and for a
    // faulty one, which is reported.
    Element Get(const JsonCursor& role);

    // Whether the section has an element of that name.
    bool Has(const std::string& name) const { return mNamed.count(name) != 0; }

    // An element that the section has; null for a faulty one.
    Element Get(const std::string& name);

    // The registers behind a role, named or inline. Null, and reported, for constants, computations and faulty
    // elements.
    std::shared_ptr<const ProfileRegisters> GetRegisters(const JsonCursor& role);

    // Warns of named elements that nothing used.
    void ReportUnused() const;

    // Of the elements' adapters.
    const ProfilePlaces& GetPlaces() const { return mPlaces; }

    // Adds the labels of all elements to the platform's device dictionary.
    void PublishLabels() const;

private:
    struct Named {
        JsonCursor place;
        Element element = nullptr;
        bool read = false;
        bool used = false;
    };

    Element Resolve(const JsonCursor& role);
    Element MarkFrames(Element element);
    Element GetNamed(const JsonCursor& role);
    std::map<std::string, Named>::iterator Find(const JsonCursor& role);
    void ReadNamed(const std::string& name, Named& named);
    Element Read(const JsonCursor& place, const std::string& name = {});
    void KeepPlace(const JsonCursor& place, const std::string& name, const ProfileElement& element);
    std::shared_ptr<ProfileElement> ReadAny(const JsonCursor& place);
    std::shared_ptr<ProfileElement> ReadConstant(const JsonCursor& place) const;
    std::shared_ptr<ProfileElement> ReadElement(const JsonCursor& place);
    std::shared_ptr<ProfileElement> ReadComputation(const JsonCursor& place);
    bool ReadScaledPower(const JsonCursor& place, const ProfileRegisters& registers, ProfileElement& element);
    void ReportCycle(const JsonCursor& role) const;

    ProfileFrames& mFrames;
    ProfileEnumerations& mEnumerations;
    const ChainRegistry& mChains;
    std::map<std::string, Named> mNamed;
    Names mOpen;             // the named elements that are being read, each needed by the one before
    std::size_t mDepth = 0;  // how many elements are being read
    std::set<std::string> mLabels;
    ProfilePlaces mPlaces;
};

}  // namespace kzm::ModbusGateway
