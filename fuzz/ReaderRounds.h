#pragma once

#include <algorithm>
#include <deque>

#include "fuzz/AnsweringDevice.h"
#include "gateway/cache/FrameAddresses.h"
#include "gateway/modbus/ModbusConnection.h"
#include "gateway/modbus/ModbusReader.h"

namespace kzm::ModbusFuzz {

// Reads a device's frames for some rounds, then writes; the device gives answers of the input.
inline void ReadRounds(Input& input, AnsweringDevice& device, const ModbusGateway::ModbusSettings& connection) {
    using namespace ModbusGateway;
    using ModbusDeviceModel::ModbusFunctionCode;
    using ModbusDeviceModel::DeviceProfile::FrameData;
    static const std::vector<FrameData> FRAMES{
        FrameData(ModbusFunctionCode::READ_HOLDING_REGISTERS, false, 0, 4, std::uint16_t{10}),
        FrameData(ModbusFunctionCode::READ_COILS, false, 0, 11, std::uint16_t{2}),
        FrameData(ModbusFunctionCode::READ_INPUT_REGISTERS, false, 0, 3, std::vector<std::uint16_t>{30, 8, 7}),
        FrameData(ModbusFunctionCode::READ_DISCRETE_INPUTS, false, 0, 1, std::uint16_t{0}),
    };
    std::deque<Answer> answers;
    for (auto count = input.UpTo(10U); count > 0; --count) {
        answers.emplace_back(input);
    }
    device.Tell(std::move(answers));

    RegisterCache cache(FRAMES);
    ModbusReader reader(connection, FRAMES, cache);
    for (auto rounds = input.ConsumeIntegralInRange(1, 2); rounds > 0; --rounds) {
        std::vector<RegisterCache::Frame> before;
        for (std::uint8_t index = 0; index < FRAMES.size(); ++index) {
            before.push_back(cache.GetFrame(index));
        }
        const auto round = reader.ReadAllFrames();
        Require(round.framesRead + round.errors.size() == FRAMES.size(), "every frame is read, or it is told why not");
        for (const auto& error : round.errors) {
            Require(!error.reason.empty(), "an error has a reason");
            Require(cache.GetFrame(error.frameIndex).registers == before.at(error.frameIndex).registers,
                    "a frame that is not read stays as it was");
        }
    }
    for (std::uint8_t index = 0; index < FRAMES.size(); ++index) {
        const auto frame = cache.GetFrame(index);
        Require(frame.registers.empty() || frame.registers.size() == FRAMES[index].mLength, "a frame is kept whole");
        Require(index % 2 == 0 || std::ranges::all_of(frame.registers, [](auto bit) { return bit <= 1; }),
                "a coil is 0 or 1");
    }
    ModbusConnection line(connection);
    const auto written = line.Write({ModbusFunctionCode::WRITE_MULTIPLE_REGISTERS, 10, 2});
    Require((written.outcome == ModbusConnection::Outcome::ANSWERED) == written.reason.empty(),
            "a failure has a reason");
}

}  // namespace kzm::ModbusFuzz
