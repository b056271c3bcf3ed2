#include "Requests.h"

#include "DataModel/DataObjectAdapter.h"
#include "OneFrameCache.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/edm/dictionary/EdmEnumToIotValue.h"
#include "src/TestElement.h"

// Compiled with the library's log lines, and without under another name; see Requests.h.
namespace kzm::ModbusDeviceModel {

namespace {

class ObjectRequests final : public kzm::Benchmark::Requests {
public:
    explicit ObjectRequests(const std::shared_ptr<DataModel::AttributeAdapter>& value) {
        mAdapter.SetAdapter(DataModel::VALUE, value);
    }
    void Refresh() override { mFrame->Refresh(); }
    void Request() override { mAdapter.GetObject(mCache, true, false, mObject); }

private:
    std::shared_ptr<OneFrameCache> mFrame = std::make_shared<OneFrameCache>();
    DataModel::DataObjectAdapter::Cache mCache = mFrame;
    DataModel::DataObjectAdapter mAdapter{"", "urn"};
    kz::orba::VortaORBAObject mObject{"id", "ElectricalMeasurement.RmsCurrentPhsA", "", nullptr};
};

}  // namespace

std::unique_ptr<kzm::Benchmark::Requests> MakeRequests(bool labelled) {
    edm::dictionary::EdmEnumToIotValue::SetLabel("urn", "On", "On");
    const auto pairs = std::make_shared<Test::Pairs>(Test::Pairs{{std::uint32_t{0}, "Off"}, {std::uint32_t{5}, "On"}});
    return std::make_unique<ObjectRequests>(labelled ? Test::MakeConverter({.code = 9, .pairs = pairs})
                                                     : Test::MakeConverter({.code = 31, .registers = 2}));
}

}  // namespace kzm::ModbusDeviceModel
