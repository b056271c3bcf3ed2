#include <algorithm>
#include <iostream>
#include <system_error>
#include <thread>

#include "Commands.h"
#include "Files.h"
#include "Options.h"
#include "StopSignal.h"
#include "gateway/modbus/ModbusSimulator.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;

namespace {

struct SimulateOptions {
    std::string profile;
    std::string capture;
    TcpEndpoint endpoint;
};

// Puts the snapshots into the cache, each as long after the first as it was recorded; the last one stays.
void PlaySeries(const Capture& capture, RegisterCache& cache, const StopSignal& stop) {
    constexpr std::uint64_t LONGEST_MS = 1'000'000'000'000;  // far from overflowing a time of the clock
    const auto start = std::chrono::steady_clock::now();
    for (const Capture::Snapshot& snapshot : capture.snapshots) {
        const std::uint64_t distance = std::min(snapshot.time - capture.snapshots.front().time, LONGEST_MS);
        if (stop.WaitUntil(start + Milliseconds(distance))) {
            return;
        }
        Capture::Restore(snapshot, cache);
    }
}

ModbusSimulator Listen(const TcpEndpoint& endpoint, const DeviceFrames& device, const RegisterCache& cache) try {
    return ModbusSimulator(device.frames, cache, endpoint.host, endpoint.port);
} catch (const std::system_error& error) {
    throw Failure(ExitStatus::NOT_REACHED, "cannot listen on " + ToText(endpoint) + ": " + error.code().message());
}

ExitStatus Simulate(const SimulateOptions& options) {
    const Capture capture = options.profile.empty() ? LoadCapture(options.capture)
                                                    : LoadCapture(options.capture, *LoadProfile(options.profile));
    RegisterCache cache(capture.frames.frames);
    Capture::Restore(capture.snapshots.front(), cache);
    const StopSignal stop;
    ModbusSimulator simulator = Listen(options.endpoint, capture.frames, cache);
    std::cout << "listening on " << ToText(TcpEndpoint{options.endpoint.host, simulator.GetPort()}) << std::endl;
    const std::jthread player([&] { PlaySeries(capture, cache, stop); });
    simulator.Serve(stop.GetFlag());
    return ExitStatus::OK;
}

}  // namespace

void AddSimulateCommand(CommandLine& line) {
    const auto options = std::make_shared<SimulateOptions>();
    CommandSyntax simulate = line.AddCommand("simulate", "Serve a recorded capture as a Modbus TCP device",
                                             [options] { return Simulate(*options); });
    AddOptionalProfileArgument(simulate, options->profile);
    AddCaptureOption(simulate, options->capture);
    AddListenOption(simulate, options->endpoint);
    simulate.SetExamples(
        {"simulate profiles/energy-meter.jsonc --capture profiles/energy-meter.capture.json"
         " --listen 127.0.0.1:5020",
         "simulate --capture registers.capture.json --listen 127.0.0.1:5020"});
}

}  // namespace kzm::ModbusTool
