#pragma once

#include <list>
#include <memory>
#include <utility>

#include "DataModel/ElementData.h"
#include "DataModel/ServiceIdentifier.h"

namespace kzm::ModbusDeviceModel::DataModel {

// Which service handles an object, and the elements that provide its values.
struct ServiceSourceMapping {
    // Takes over the list; the elements are shared.
    ServiceSourceMapping(ServiceImpl::ServiceIdentifier identifier, std::list<std::shared_ptr<ElementData>>&& sources)
        : serviceIdentifier(identifier), elements(std::move(sources)) {}

    ServiceImpl::ServiceIdentifier serviceIdentifier;  // which service
    std::list<std::shared_ptr<ElementData>> elements;  // in the order in which the builder gave them
};

}  // namespace kzm::ModbusDeviceModel::DataModel
