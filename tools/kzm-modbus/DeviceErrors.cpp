#include "DeviceErrors.h"

#include <iostream>
#include <variant>

#include "Options.h"
#include "Text.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

Failure ImpossibleSettings(const ModbusSettings& settings) {
    const auto* serial = std::get_if<SerialPort>(&settings.line);
    std::string reason = "a Modbus TCP device has unit 0 to 247, or 255";
    if (serial) {
        reason = settings.unit > 247 ? "a device on a serial line has unit 0 to 247"
                                     : std::to_string(serial->baud) + " is not a baud rate of serial lines";
    }
    return {ExitStatus::WRONG_USAGE, ToText(settings) + ": " + reason};
}

std::vector<std::string> DescribeErrors(const ModbusReader::Round& round, const DeviceFrames& device) {
    if (!round.connectionError.empty()) {
        return {"no connection: " + round.connectionError};
    }
    std::vector<std::string> lines;
    for (const ModbusReader::FrameError& error : round.errors) {
        lines.push_back("frame " + device.names.at(error.frameIndex) + ": " + error.reason);
    }
    return lines;
}

void ErrorReport::Report(const std::vector<std::string>& errors) {
    if (errors == mLast) {
        return;
    }
    mLast = errors;
    for (const std::string& error : errors) {
        std::cerr << "kzm-modbus: " << Printable(error) << '\n';
    }
    if (errors.empty()) {
        std::cerr << "kzm-modbus: all frames are read again\n";
    }
    std::cerr.flush();
}

}  // namespace kzm::ModbusTool
