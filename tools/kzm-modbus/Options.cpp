#include "Options.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>

#include "gateway/json/ProblemText.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

std::optional<int> ParseNumber(std::string_view text, int low, int high) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole && number >= low && number <= high ? std::optional(number) : std::nullopt;
}

struct EndpointText {
    std::string_view host;
    std::string_view port;  // empty where there is none
};

// Splits "HOST", "HOST:PORT", "[IPV6]" and "[IPV6]:PORT".
std::optional<EndpointText> SplitEndpoint(std::string_view text) {
    std::string_view host = text.substr(0, text.find(':'));
    std::string_view rest = text.substr(host.size());
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == text.npos) {
            return std::nullopt;
        }
        host = text.substr(1, end - 1);
        rest = text.substr(end + 1);
    }
    if (host.empty() || rest == ":" || (!rest.empty() && rest[0] != ':')) {
        return std::nullopt;
    }
    return EndpointText{host, rest.substr(std::min<std::size_t>(rest.size(), 1))};
}

TcpEndpoint ParseEndpoint(const std::string& text, bool listening) {
    const int lowestPort = listening ? 0 : 1;
    auto parts = SplitEndpoint(text);
    if (parts && parts->port.empty() && !listening) {
        parts->port = "502";
    }
    const auto port = parts ? ParseNumber(parts->port, lowestPort, 65535) : std::nullopt;
    if (!port) {
        const std::string form = listening ? "HOST:PORT" : "HOST[:PORT]";
        throw std::invalid_argument(Quoted(text) + " is not " + form + " with a port from " +
                                    std::to_string(lowestPort) +
                                    " to 65535 (an IPv6 address is written in brackets: [::1]:502)");
    }
    return {std::string(parts->host), static_cast<std::uint16_t>(*port)};
}

constexpr const char* RTU_FORM = " is not DEVICE:BAUD:PARITY with parity N, E or O, e.g. /dev/ttyUSB0:19200:E";

// The last two colons separate, because the name of a device may contain colons.
SerialPort ParseRtuLine(const std::string& text) {
    const std::size_t parityAt = text.rfind(':');
    const std::size_t baudAt = parityAt == text.npos || parityAt == 0 ? text.npos : text.rfind(':', parityAt - 1);
    if (baudAt == text.npos || baudAt == 0) {
        throw std::invalid_argument(Quoted(text) + RTU_FORM);
    }
    const auto baud = ParseNumber(text.substr(baudAt + 1, parityAt - baudAt - 1), 1, 10'000'000);
    const std::string parity = text.substr(parityAt + 1);
    if (!baud || (parity != "N" && parity != "E" && parity != "O")) {
        throw std::invalid_argument(Quoted(text) + RTU_FORM);
    }
    return {text.substr(0, baudAt), *baud, parity[0]};
}

void AddLineOptions(CommandSyntax& command, ModbusSettings& connection) {
    command.AddParsed({"--tcp", "HOST[:PORT]", "A Modbus TCP device; port 502 unless given"},
                      [&](const std::string& text) { connection.line = ParseEndpoint(text, /*listening=*/false); });
    command.AddParsed({"--rtu", "DEVICE:BAUD:PARITY", "A Modbus RTU device on a serial line; parity N, E or O"},
                      [&](const std::string& text) { connection.line = ParseRtuLine(text); });
    command.AddNumber({"--unit", "N", "The device's unit number (1)"}, 0, 255,
                      [&](std::uint32_t unit) { connection.unit = static_cast<std::uint8_t>(unit); });
    command.AddSeconds({"--timeout", "SECONDS", "How long to wait for an answer"}, connection.timeout);
}

void AddOptionalCapture(CommandSyntax& command, std::string& path) {
    command.AddText({"--capture", "FILE", "The recorded frames of a device"}, path);
}

}  // namespace

void AddProfileArgument(CommandSyntax& command, std::string& path) {
    command.AddArgument("PROFILE", "The device profile", path);
}

void AddOptionalProfileArgument(CommandSyntax& command, std::string& path) {
    command.AddOptionalArgument("PROFILE", "The device profile", path);
}

void AddCaptureOption(CommandSyntax& command, std::string& path) {
    AddOptionalCapture(command, path);
    command.Require("--capture");
}

void AddObjectOption(CommandSyntax& command, std::vector<std::string>& objects) {
    command.AddTexts({"--object", "NAME[/ALIAS]", "Only this object; may be given more than once"}, objects);
}

void AddExactOption(CommandSyntax& command, bool& exact) {
    command.AddFlag("--exact", "All digits of numbers, not only those that their element's precision gives a meaning",
                    exact);
}

void AddRawOption(CommandSyntax& command, bool& raw) {
    command.AddFlag("--raw", "The registers in hexadecimal, and the age of their frame", raw);
}

void AddRepetitionOptions(CommandSyntax& command, Repetition& repetition) {
    const std::string usual = repetition.count == 0 ? "until interrupted" : std::to_string(repetition.count);
    command.AddNumber({"--count", "N", "How many rounds to read (" + usual + ")"}, 1, 1'000'000'000,
                      [&](std::uint32_t count) { repetition.count = count; });
    command.AddSeconds({"--interval", "SECONDS", "From the start of one round to that of the next"},
                       repetition.interval);
}

void AddConnectionOptions(CommandSyntax& command, ModbusSettings& connection) {
    AddLineOptions(command, connection);
    command.RequireOneOf("Device", {"--tcp", "--rtu"});
}

void AddSourceOptions(CommandSyntax& command, std::string& capture, ModbusSettings& connection) {
    AddLineOptions(command, connection);
    AddOptionalCapture(command, capture);
    command.RequireOneOf("Device or capture", {"--tcp", "--rtu", "--capture"});
    command.Exclude({"--unit", "--timeout"}, "--capture");
}

void AddAnySourceOptions(CommandSyntax& command, std::string& capture, ModbusSettings& connection) {
    AddLineOptions(command, connection);
    AddOptionalCapture(command, capture);
    command.Exclude({"--tcp", "--rtu", "--unit", "--timeout"}, "--capture");
    command.Exclude({"--tcp"}, "--rtu");
}

bool IsDeviceGiven(const ModbusSettings& connection) {
    const auto* tcp = std::get_if<TcpEndpoint>(&connection.line);
    return !tcp || !tcp->host.empty();
}

void AddCaptureOrDevice(CommandSyntax& command, std::string& capture, ModbusSettings& connection) {
    command.AddOptionalArgument("CAPTURE", "The recorded frames of a device", capture);
    AddLineOptions(command, connection);
    command.RequireOneOf("Device or capture", {"CAPTURE", "--tcp", "--rtu"});
    command.Exclude({"--unit", "--timeout"}, "CAPTURE");
}

void AddListenOption(CommandSyntax& command, TcpEndpoint& endpoint) {
    command.AddParsed({"--listen", "HOST:PORT", "The address to serve at; port 0 takes a free one"},
                      [&](const std::string& text) { endpoint = ParseEndpoint(text, /*listening=*/true); });
    command.Require("--listen");
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
