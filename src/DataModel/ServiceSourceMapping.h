#pragma once

#include <list>
#include <memory>
#include <utility>

#include "DataModel/ElementData.h"
#include "DataModel/ServiceIdentifier.h"

namespace kzm::ModbusDeviceModel::DataModel {

// Which service handles an object, and the elements that feed it.
struct ServiceSourceMapping {
    ServiceSourceMapping(ServiceImpl::ServiceIdentifier identifier, std::list<std::shared_ptr<ElementData>>&& sources)
        : serviceIdentifier(identifier), elements(std::move(sources)) {}

    ServiceImpl::ServiceIdentifier serviceIdentifier;
    std::list<std::shared_ptr<ElementData>> elements;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
