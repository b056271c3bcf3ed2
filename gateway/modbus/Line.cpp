#include "gateway/modbus/Line.h"

#include <modbus/modbus.h>
#include <netdb.h>

#include <cerrno>

namespace kzm::ModbusGateway {

bool IsLost(int error) {
    return error < MODBUS_ENOBASE && error != ETIMEDOUT;
}

std::string TextOf(int error) {
    return error < 0 ? gai_strerror(error) : modbus_strerror(error);
}

}  // namespace kzm::ModbusGateway
