#pragma once

#include "DeviceProfile/ModbusMeasurementInformation.h"
