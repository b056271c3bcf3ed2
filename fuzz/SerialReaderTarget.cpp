// Reads a Modbus RTU device that answers anything, over a pseudo terminal. Slow: what does not fit makes the reader
// wait for silence on the line.
#include "fuzz/ReaderRounds.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    using namespace std::chrono_literals;
    static AnsweringDevice device(AnsweringDevice::Line::SERIAL);
    Input input(data, size);
    ReadRounds(input, device, {.line = kzm::ModbusGateway::SerialPort{device.GetLineName()}, .timeout = 3ms});
    return 0;
}
