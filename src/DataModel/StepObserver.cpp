#include "DataModel/Observation.h"

namespace kzm::ModbusDeviceModel::DataModel {

constinit thread_local StepObserver* tObserver = nullptr;

StepObserver::~StepObserver() = default;

StepObserver* GetStepObserver() {
    return tObserver;
}

ObservedRequest::ObservedRequest(StepObserver& observer) : mOuter(tObserver) {
    tObserver = &observer;
}

ObservedRequest::~ObservedRequest() {
    tObserver = mOuter;
}

}  // namespace kzm::ModbusDeviceModel::DataModel
