#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace kzm::ModbusGateway {

// The Modbus TCP server of python3-pymodbus in a process of its own, for the life of this object.
class PymodbusServer {
public:
    PymodbusServer() {
        std::array<int, 2> input{};
        std::array<int, 2> output{};
        if (pipe2(input.data(), O_CLOEXEC) != 0 || pipe2(output.data(), O_CLOEXEC) != 0) {
            return;
        }
        const std::string script =
            std::string(__FILE__).substr(0, std::string(__FILE__).rfind('/')) + "/pymodbus_server.py";
        mProcess = fork();
        if (mProcess == 0) {
            dup2(input[0], STDIN_FILENO);
            dup2(output[1], STDOUT_FILENO);
            execl("/usr/bin/python3", "/usr/bin/python3", script.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        close(input[0]);
        close(output[1]);
        mInput = input[1];
        mOutput = fdopen(output[0], "r");
        std::array<char, 16> line{};
        mPort = std::fgets(line.data(), static_cast<int>(line.size()), mOutput) != nullptr ? std::atoi(line.data()) : 0;
    }
    ~PymodbusServer() {
        if (mProcess > 0) {
            close(mInput);  // which also ends the server when this process dies before
            kill(mProcess, SIGKILL);
            waitpid(mProcess, nullptr, 0);
            std::fclose(mOutput);
        }
    }
    PymodbusServer(const PymodbusServer&) = delete;
    PymodbusServer& operator=(const PymodbusServer&) = delete;

    // 0 when the server could not be started.
    std::uint16_t GetPort() const { return static_cast<std::uint16_t>(mPort); }

private:
    pid_t mProcess = -1;
    int mInput = -1;
    std::FILE* mOutput = nullptr;
    int mPort = 0;
};

}  // namespace kzm::ModbusGateway
