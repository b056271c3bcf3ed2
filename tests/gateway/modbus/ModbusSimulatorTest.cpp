#include "gateway/modbus/ModbusSimulator.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <atomic>
#include <thread>

#include "gateway/modbus/ModbusReader.h"
#include "gateway/modbus/ServedCache.h"
#include "gateway/modbus/Socket.h"
#include "gateway/modbus/TcpMessage.h"

namespace kzm::ModbusGateway {
namespace {

using namespace ModbusDeviceModel;
using DeviceProfile::FrameData;

TEST(ModbusSimulator, OutlivesAClientThatDoesNotWaitForItsAnswers) {
    const std::vector<FrameData> frames{
        FrameData(ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, 1, std::uint16_t{10})};
    ServedCache served(frames);
    served.cache.Update(0, std::vector<std::uint16_t>{7}, 1);
    const Bytes request = TcpMessage::Make(1, 1, Bytes{3, 0, 10, 0, 1});
    Bytes requests;
    for (int i = 0; i < 80; ++i) {
        requests.insert(requests.end(), request.begin(), request.end());
    }
    for (int i = 0; i < 20; ++i) {
        Socket client;
        ASSERT_EQ(ConnectTo("127.0.0.1", served.GetPort(), std::chrono::seconds(5), nullptr, client), 0);
        ASSERT_EQ(send(client.Get(), requests.data(), requests.size(), 0), std::ssize(requests));
    }
    RegisterCache cache(frames);
    ModbusReader reader({.line = TcpEndpoint{"127.0.0.1", served.GetPort()}}, frames, cache);
    EXPECT_EQ(reader.ReadAllFrames().framesRead, 1U);
}

}  // namespace
}  // namespace kzm::ModbusGateway
