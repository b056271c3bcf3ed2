#include "Options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <optional>

#include "Text.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::optional<int> ParseNumber(std::string_view text, int low, int high) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && number >= low && number <= high ? std::optional(number) : std::nullopt;
}

// Splits "HOST", "HOST:PORT", "[IPV6]" and "[IPV6]:PORT"; the port is empty where there is none.
std::optional<std::pair<std::string_view, std::string_view>> SplitEndpoint(std::string_view text) {
    const bool bracketed = text.starts_with('[');
    const std::size_t hostEnd = text.find(bracketed ? ']' : ':');
    if (bracketed && hostEnd == text.npos) {
        return std::nullopt;
    }
    const std::string_view host = text.substr(bracketed ? 1 : 0, hostEnd - (bracketed ? 1 : 0));
    const std::string_view rest = hostEnd == text.npos ? "" : text.substr(hostEnd + (bracketed ? 1 : 0));
    if (host.empty() || (!rest.empty() && (rest[0] != ':' || rest.size() == 1))) {
        return std::nullopt;
    }
    return std::pair(host, rest.substr(rest.empty() ? 0 : 1));
}

TcpEndpoint ParseEndpoint(const char* option, const std::string& text, bool listening) {
    const auto parts = SplitEndpoint(text);
    const auto port = parts && !(listening && parts->second.empty())
                          ? ParseNumber(parts->second.empty() ? "502" : parts->second, listening ? 0 : 1, 65535)
                          : std::nullopt;
    if (!port) {
        throw CLI::ValidationError(option, Quoted(text) + " is not " + (listening ? "HOST:PORT" : "HOST[:PORT]") +
                                               " with a port from " + (listening ? "0" : "1") +
                                               " to 65535 (an IPv6 address stands in brackets: [::1]:502)");
    }
    return {std::string(parts->first), static_cast<std::uint16_t>(*port)};
}

constexpr const char* CAPTURE_HELP = "The recorded frames of a device";
constexpr const char* RTU_FORM = " is not DEVICE:BAUD:PARITY with parity N, E or O, e.g. /dev/ttyUSB0:19200:E";

// A device's name may hold colons, so that the last two count.
SerialPort ParseRtuLine(const std::string& text) {
    const std::size_t parityAt = text.rfind(':');
    const std::size_t baudAt = parityAt == text.npos || parityAt == 0 ? text.npos : text.rfind(':', parityAt - 1);
    if (baudAt == text.npos || baudAt == 0) {
        throw CLI::ValidationError("--rtu", Quoted(text) + RTU_FORM);
    }
    const auto baud = ParseNumber(text.substr(baudAt + 1, parityAt - baudAt - 1), 1, 10'000'000);
    const std::string parity = text.substr(parityAt + 1);
    if (!baud || (parity != "N" && parity != "E" && parity != "O")) {
        throw CLI::ValidationError("--rtu", Quoted(text) + RTU_FORM);
    }
    return {text.substr(0, baudAt), *baud, parity[0]};
}

void AddSeconds(CLI::App& command, const std::string& name, Milliseconds& target, const std::string& description) {
    const auto set = [name, &target](const std::string& text) {
        double seconds = 0;
        if (!CLI::detail::lexical_cast(text, seconds) || !(seconds >= 0.001 && seconds <= 86400)) {
            throw CLI::ValidationError(name, Quoted(text) + " is no number of seconds from 0.001 to 86400");
        }
        target = Milliseconds(static_cast<std::int64_t>(seconds * 1000 + 0.5));
    };
    const double usual = std::chrono::duration<double>(target).count();
    command.add_option_function<std::string>(name, set, description + " (" + FormatNumber(usual) + ")")
        ->type_name("SECONDS");
}

// One of these must be said.
CLI::Option_group& AddLineOptions(CLI::App& command, ModbusSettings& connection) {
    CLI::Option_group* lines = command.add_option_group("Device");
    lines
        ->add_option_function<std::string>(
            "--tcp", [&](const std::string& text) { connection.line = ParseEndpoint("--tcp", text, false); },
            "A Modbus TCP device; port 502 when not said")
        ->type_name("HOST[:PORT]");
    lines
        ->add_option_function<std::string>(
            "--rtu", [&](const std::string& text) { connection.line = ParseRtuLine(text); },
            "A Modbus RTU device on a serial line; parity N, E or O")
        ->type_name("DEVICE:BAUD:PARITY");
    lines->require_option(1);
    return *lines;
}

void AddUnitOptions(CLI::App& command, ModbusSettings& connection) {
    const auto setUnit = [&](const std::string& text) {
        const auto unit = ParseNumber(text, 0, 255);
        if (!unit || (*unit > 247 && *unit != 255)) {
            throw CLI::ValidationError("--unit",
                                       Quoted(text) + " is no unit number: 0 to 247, or 255 for a TCP device");
        }
        connection.unit = static_cast<std::uint8_t>(*unit);
    };
    command.add_option_function<std::string>("--unit", setUnit, "The device's unit number (1)")->type_name("N");
    AddSeconds(command, "--timeout", connection.timeout, "How long to wait for an answer");
}

}  // namespace

void AddProfileArgument(CLI::App& command, std::string& path) {
    command.add_option("PROFILE", path, "The device profile")->required()->type_name("");
}

void AddCaptureOption(CLI::App& command, std::string& path) {
    command.add_option("--capture", path, CAPTURE_HELP)->required()->type_name("FILE");
}

void AddObjectOption(CLI::App& command, std::vector<std::string>& objects) {
    command.add_option("--object", objects, "Only this object; may be said more than once")
        ->type_name("NAME[/ALIAS]")
        ->expected(1)
        ->take_all();
}

void AddRepetitionOptions(CLI::App& command, Repetition& repetition) {
    const auto setCount = [&repetition](const std::string& text) {
        const auto count = ParseNumber(text, 1, 1'000'000'000);
        if (!count) {
            throw CLI::ValidationError("--count", Quoted(text) + " is no number from 1 to 1000000000");
        }
        repetition.count = static_cast<std::uint64_t>(*count);
    };
    const std::string usual = repetition.count == 0 ? "until interrupted" : std::to_string(repetition.count);
    command.add_option_function<std::string>("--count", setCount, "How often to read the device (" + usual + ")")
        ->type_name("N");
    AddSeconds(command, "--interval", repetition.interval, "From the start of one reading to that of the next");
}

void AddConnectionOptions(CLI::App& command, ModbusSettings& connection) {
    AddLineOptions(command, connection);
    AddUnitOptions(command, connection);
}

void AddSourceOptions(CLI::App& command, std::string& capture, ModbusSettings& connection) {
    AddLineOptions(command, connection).add_option("--capture", capture, CAPTURE_HELP)->type_name("FILE");
    AddUnitOptions(command, connection);
}

void AddListenOption(CLI::App& command, TcpEndpoint& endpoint) {
    command
        .add_option_function<std::string>(
            "--listen", [&](const std::string& text) { endpoint = ParseEndpoint("--listen", text, true); },
            "The address to serve at; port 0 takes a free one")
        ->required()
        ->type_name("HOST:PORT");
}

std::string ToText(const TcpEndpoint& endpoint) {
    const bool ipv6 = endpoint.host.find(':') != std::string::npos;
    return (ipv6 ? "[" + endpoint.host + "]" : endpoint.host) + ":" + std::to_string(endpoint.port);
}

std::string ToText(const ModbusSettings& connection) {
    const auto* tcp = std::get_if<TcpEndpoint>(&connection.line);
    return (tcp ? ToText(*tcp) : std::get<SerialPort>(connection.line).device) + " unit " +
           std::to_string(connection.unit);
}

}  // namespace kzm::ModbusTool
