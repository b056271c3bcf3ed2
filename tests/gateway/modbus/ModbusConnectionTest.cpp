#include "gateway/modbus/ModbusConnection.h"

#include <gtest/gtest.h>
#include <modbus/modbus.h>
#include <termios.h>

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "gateway/modbus/Requests.h"
#include "gateway/modbus/RtuMessage.h"
#include "gateway/modbus/ScriptedDevice.h"
#include "gateway/modbus/TcpMessage.h"

namespace kzm::ModbusGateway::ModbusConnectionTest {

using namespace std::chrono_literals;
using ModbusDeviceModel::ModbusFunctionCode;

// A pseudo-terminal keeps every setting of a line except PARENB.
termios SettingsOf(const ScriptedDevice& device, const SerialPort& port) {
    ModbusConnection connection({.line = port, .timeout = 1s});
    std::uint16_t value = 0;
    connection.Read(ModbusFunctionCode::READ_HOLDING_REGISTERS, 7, 1, &value);
    EXPECT_EQ(value, 7);
    termios settings{};
    tcgetattr(device.GetOtherEnd(), &settings);
    return settings;
}

// QEMU's user mode knows no speed above 460800.
bool SystemKnows(const ScriptedDevice& device, speed_t speed) {
    termios settings{};
    tcgetattr(device.GetOtherEnd(), &settings);
    const termios before = settings;
    cfsetspeed(&settings, speed);
    tcsetattr(device.GetOtherEnd(), TCSANOW, &settings);
    tcgetattr(device.GetOtherEnd(), &settings);
    tcsetattr(device.GetOtherEnd(), TCSANOW, &before);
    return cfgetospeed(&settings) == speed;
}

std::ptrdiff_t CountOpenFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST(ModbusConnection, SetsTheSerialLineAsItIsToldAndClosesIt) {
    const ScriptedDevice device(0ms);
    const auto openFiles = CountOpenFiles();
    for (const auto& [baud, speed] : std::initializer_list<std::pair<int, speed_t>>{
             {110, B110},         {300, B300},         {600, B600},         {1200, B1200},       {2400, B2400},
             {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},
             {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},   {576000, B576000},
             {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000}, {2500000, B2500000},
             {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000}}) {
        if (speed > B460800 && !SystemKnows(device, speed)) {
            continue;
        }
        const termios settings = SettingsOf(device, {.device = device.GetLineName(), .baud = baud});
        EXPECT_EQ(cfgetospeed(&settings), speed) << baud;
        EXPECT_EQ(cfgetispeed(&settings), speed) << baud;
    }
    for (const auto& [parity, flags] : {std::pair{'N', CSTOPB}, {'E', 0}, {'O', PARODD}}) {
        const termios settings = SettingsOf(device, {.device = device.GetLineName(), .parity = parity});
        EXPECT_EQ(settings.c_cflag & (CSIZE | CSTOPB | PARODD), CS8 | static_cast<tcflag_t>(flags)) << parity;
        EXPECT_EQ((settings.c_iflag & INPCK) != 0, parity != 'N') << parity;
    }
    EXPECT_EQ(CountOpenFiles(), openFiles);
}

TEST(ModbusConnection, RefusesSettingsThatCannotBe) {
    const SerialPort port{"/dev/null"};
    for (const ModbusSettings& settings :
         std::initializer_list<ModbusSettings>{{.line = TcpEndpoint{""}},
                                               {.line = TcpEndpoint{"host"}, .unit = 248},
                                               {.line = TcpEndpoint{"host"}, .unit = 254},
                                               {.line = SerialPort{""}},
                                               {.line = port, .unit = 255},
                                               {.line = port, .unit = 248},
                                               {.line = SerialPort{.device = "/dev/null", .baud = 14400}},
                                               {.line = SerialPort{.device = "/dev/null", .parity = 'e'}}}) {
        EXPECT_THROW(ModbusConnection{settings}, std::invalid_argument);
    }
    EXPECT_NO_THROW(ModbusConnection({.line = TcpEndpoint{"host"}, .unit = 255}));
    EXPECT_NO_THROW(ModbusConnection({.line = port, .unit = 247}));
}

TEST(ModbusConnection, SendsNoRequestThatCannotBe) {
    ModbusConnection connection({.line = TcpEndpoint{"127.0.0.1", 1}});
    std::vector<std::uint16_t> values(2001);
    const auto read = [&](ModbusFunctionCode functionCode, std::uint16_t count) {
        return connection.Read(functionCode, 0, count, values.data()).reason;
    };
    EXPECT_EQ(read(ModbusFunctionCode::READ_HOLDING_REGISTERS, 126), "one request reads 1 to 125 registers, not 126");
    EXPECT_EQ(read(ModbusFunctionCode::READ_COILS, 2001), "one request reads 1 to 2000 registers, not 2001");
    EXPECT_EQ(read(ModbusFunctionCode::READ_COILS, 0), "one request reads 1 to 2000 registers, not 0");
    EXPECT_EQ(read(ModbusFunctionCode::READ_COILS, 2000), "Connection refused");
    const auto write = [&](std::uint16_t count) {
        return connection.Write({ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, 0, count}).reason;
    };
    EXPECT_EQ(write(0), "one request writes 1 to 123 registers, not 0");
    EXPECT_EQ(write(124), "one request writes 1 to 123 registers, not 124");
    EXPECT_EQ(write(123), "Connection refused");
}

constexpr std::uint16_t UNTOUCHED = 0xEEEE;

struct AnswerRow {
    ModbusFunctionCode functionCode;
    std::uint16_t count;
    Bytes answer;
    int error;
    std::vector<std::uint16_t> values{};
};

TEST(ModbusConnection, TakesOnlyAnAnswerThatFitsTheRequest) {
    constexpr auto COILS = ModbusFunctionCode::READ_COILS;
    constexpr auto INPUTS = ModbusFunctionCode::READ_DISCRETE_INPUTS;
    constexpr auto HOLDING = ModbusFunctionCode::READ_HOLDING_REGISTERS;
    // clang-format off
    const AnswerRow rows[] = {
        {HOLDING, 2, {3, 4, 0x12, 0x34, 0xFF, 0xFE}, 0, {0x1234, 0xFFFE}}, {HOLDING, 2, {3, 2, 0x12, 0x34}, EMBBADDATA},
        {HOLDING, 2, {3, 4, 0x12, 0x34, 0xFF}, EMBBADDATA}, {HOLDING, 2, {3, 4, 0x12, 0x34, 0xFF, 0xFE, 0}, EMBBADDATA},
        {HOLDING, 2, {3, 2, 0x12, 0x34, 0xFF, 0xFE}, EMBBADDATA},
        {HOLDING, 2, {4, 4, 0x12, 0x34, 0xFF, 0xFE}, EMBBADDATA}, {HOLDING, 2, {3}, EMBBADDATA},
        {HOLDING, 2, {}, EMBBADDATA}, {COILS, 8, {1, 1, 0x81}, 0, {1, 0, 0, 0, 0, 0, 0, 1}},
        {INPUTS, 9, {2, 2, 0x40, 0x01}, 0, {0, 0, 0, 0, 0, 0, 1, 0, 1}}, {COILS, 9, {1, 1, 0x81}, EMBBADDATA},
        {HOLDING, 2, {0x83, 2}, EMBXILADD}, {HOLDING, 2, {0x83, 11}, EMBXGTAR}, {HOLDING, 2, {0x83, 0}, EMBBADEXC},
        {HOLDING, 2, {0x83, 9}, EMBBADEXC}, {HOLDING, 2, {0x83, 12}, EMBBADEXC}, {HOLDING, 2, {0x84, 2}, EMBBADDATA},
        {HOLDING, 2, {0x83, 2, 0}, EMBBADDATA}};
    // clang-format on
    for (const auto& [functionCode, count, answer, error, expected] : rows) {
        std::vector<std::uint16_t> values(count, UNTOUCHED);
        EXPECT_EQ(TakeValues(ReadRequest(functionCode, 100, count), answer, values.data()), error)
            << testing::PrintToString(answer);
        EXPECT_EQ(values, error == 0 ? expected : std::vector<std::uint16_t>(count, UNTOUCHED));
    }
    EXPECT_EQ(TcpMessage::SizeOf(Bytes{0, 1, 0, 0, 0, 254}), 260U);
    EXPECT_EQ(TcpMessage::SizeOf(Bytes{0, 1, 0, 0, 0, 255}), 0U);
    EXPECT_EQ(TcpMessage::SizeOf(Bytes{0, 1, 0, 1, 0, 6}), 0U);
    EXPECT_EQ(RtuMessage::SizeOfAnswer(Bytes{9, 3, 251}), 256U);
    EXPECT_EQ(RtuMessage::SizeOfAnswer(Bytes{9, 3, 252}), 0U);
    const Bytes request = WriteRequest({ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, 0x0102, 3});
    EXPECT_EQ(request, (Bytes{16, 1, 2, 0, 3, 6, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(TakeConfirmation(request, {16, 1, 2, 0, 3}), 0);
    EXPECT_EQ(TakeConfirmation(request, {16, 1, 2, 0, 2}), EMBBADDATA);
    EXPECT_EQ(TakeConfirmation(request, {16, 1, 3, 0, 3}), EMBBADDATA);
    EXPECT_EQ(TakeConfirmation(request, {16, 1, 2, 0}), EMBBADDATA);
    EXPECT_EQ(TakeConfirmation(request, {0x90, 1}), EMBXILFUN);
}

}  // namespace kzm::ModbusGateway::ModbusConnectionTest
