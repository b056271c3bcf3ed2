#include <iostream>
#include <stdexcept>

#include "Commands.h"
#include "DeviceErrors.h"
#include "Files.h"
#include "Options.h"
#include "Text.h"
#include "WritePlan.h"
#include "gateway/modbus/ModbusConnection.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
using ModbusDeviceModel::ModbusFunctionCode;
using Payload = WritePlan::Payload;
using Outcome = ModbusConnection::Outcome;

namespace {

struct WriteOptions {
    std::string profile;
    std::string object;
    std::vector<std::string> assignments;
    ModbusSettings connection;
    bool send = false;
    bool exact = false;
};

ModbusConnection LineOf(const ModbusSettings& connection) try {
    return ModbusConnection(connection);
} catch (const std::invalid_argument&) {
    throw ImpossibleSettings(connection);
}

// Fills a payload with what the device holds.
Payload Read(ModbusConnection& line, Payload payload, const ModbusSettings& connection) {
    const auto result = line.Read(ModbusFunctionCode::READ_HOLDING_REGISTERS, payload.mStartAddress,
                                  static_cast<std::uint16_t>(payload.mValues.size()), payload.mValues.data());
    if (result.outcome != Outcome::ANSWERED) {
        throw Failure(ExitStatus::NOT_REACHED, ToText(connection) + ": cannot read: " + result.reason);
    }
    return payload;
}

void Send(ModbusConnection& line, const Payload& changes) {
    const auto result = line.Write(changes);
    if (result.outcome == Outcome::EXCEPTION || result.outcome == Outcome::UNREACHABLE) {
        throw Failure(ExitStatus::NOT_WRITTEN, "the device did not accept the write: " + result.reason);
    }
    if (result.outcome != Outcome::ANSWERED) {
        throw Failure(ExitStatus::NOT_WRITTEN,
                      "no answer, so it is unknown whether the device wrote: " + result.reason);
    }
}

// Throws Failure when the device holds something else than was written.
void Compare(const Payload& written, const Payload& held) {
    for (std::size_t i = 0; i < written.mValues.size(); ++i) {
        if (held.mValues[i] != written.mValues[i]) {
            throw Failure(ExitStatus::NOT_WRITTEN, "register " + std::to_string(written.mStartAddress + i) +
                                                       " was written as " + std::to_string(written.mValues[i]) +
                                                       " and reads back as " + std::to_string(held.mValues[i]));
        }
    }
}

ExitStatus Write(const WriteOptions& options) {
    const auto profile = LoadProfile(options.profile);
    const WritePlan plan(*profile, options.object, options.assignments);
    ModbusConnection line = LineOf(options.connection);
    const Payload before = Read(line, plan.GetEmptyFrame(), options.connection);
    const Payload after = plan.Apply(before);
    PrintTable(plan.CompareRegisters(before, after));
    std::cout << '\n';
    PrintTable(plan.CompareElements(before, after, options.exact));
    const Payload changes = WritePlan::ChangesOf(before, after);
    const std::string what =
        Counted(changes.mValues.size(), "register") + " from " + std::to_string(changes.mStartAddress) + " on";
    if (changes.mValues.empty()) {
        std::cout << "\nNothing changes.\n";
    } else if (!options.send) {
        std::cout << "\nNot sent; --send writes " << what << ".\n";
    } else {
        Send(line, changes);
        Compare(changes, Read(line, changes, options.connection));
        std::cout << "\nWritten and read back: " << what << ".\n";
    }
    return ExitStatus::OK;
}

}  // namespace

void AddWriteCommand(CommandLine& line) {
    const auto options = std::make_shared<WriteOptions>();
    CommandSyntax write =
        line.AddCommand("write", "Show what a write to an object would change; with --send, make the change",
                        [options] { return Write(*options); });
    AddProfileArgument(write, options->profile);
    write.AddArgument("OBJECT", "The object of a service, NAME[/ALIAS]", options->object);
    write.AddArguments("ELEMENT=VALUE", "Elements of the service and their new values", options->assignments);
    AddConnectionOptions(write, options->connection);
    write.AddFlag("--send", "Write the registers that change, then read them back and compare", options->send);
    AddExactOption(write, options->exact);
    write.SetExamples(
        {"write profiles/energy-meter.jsonc Measurement.Settings demandInterval=20 --tcp 192.168.1.20"
         " --send"});
}

}  // namespace kzm::ModbusTool
