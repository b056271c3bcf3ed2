// Reads a Modbus TCP device that answers anything.
#include "fuzz/ReaderRounds.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    using namespace std::chrono_literals;
    static AnsweringDevice device(AnsweringDevice::Line::TCP);
    Input input(data, size);
    const std::uint16_t port = input.UpTo(31) == 1 ? std::uint16_t{1} : device.GetPort();  // nobody listens on port 1
    ReadRounds(input, device,
               {.line = kzm::ModbusGateway::TcpEndpoint{"127.0.0.1", port},
                .timeout = 5ms,
                .firstPause = 1ms,
                .longestPause = 2ms});
    return 0;
}
