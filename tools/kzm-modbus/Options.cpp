#include "Options.h"

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

TcpEndpoint ParseEndpoint(const std::string& text, bool listening) {
    const auto parts = SplitEndpoint(text);
    const auto port = parts && !(listening && parts->second.empty())
                          ? ParseNumber(parts->second.empty() ? "502" : parts->second, listening ? 0 : 1, 65535)
                          : std::nullopt;
    if (!port) {
        throw std::invalid_argument(Quoted(text) + " is not " +
                                    (listening ? "HOST:PORT with a port from 0" : "HOST[:PORT] with a port from 1") +
                                    " to 65535 (an IPv6 address is written in brackets: [::1]:502)");
    }
    return {std::string(parts->first), static_cast<std::uint16_t>(*port)};
}

constexpr const char* RTU_FORM = " is not DEVICE:BAUD:PARITY with parity N, E or O, e.g. /dev/ttyUSB0:19200:E";

// A device's name may hold colons, so that the last two count.
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
