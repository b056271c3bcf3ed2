namespace kzm::ModbusDeviceModel {}
