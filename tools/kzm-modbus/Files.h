#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "gateway/capture/Capture.h"
#include "gateway/profile/ProfileLoader.h"

namespace kzm::ModbusTool {

// The content of a file of at most 64 MiB. Throws Failure when it cannot be read.
std::string ReadFile(const std::string& path);

// Prints a line for each: "FILE:LINE: error: POINTER: message".
void PrintProblems(std::ostream& stream, const std::string& path, const ModbusGateway::Problems& problems);

// A profile or a capture without errors; warnings are left to the command `check`. Errors are printed on standard
// error, together with any warnings, and Failure is thrown.
std::unique_ptr<ModbusGateway::LoadedProfile> LoadProfile(const std::string& path);
ModbusGateway::Capture LoadCapture(const std::string& path, const ModbusGateway::LoadedProfile& profile);
// A capture that describes its frames itself.
ModbusGateway::Capture LoadCapture(const std::string& path);

// A file that appears whole or not at all: what is there under its name stays until Commit.
class OutputFile {
public:
    // Throws Failure, before there is anything to lose, when the file cannot be written or is one of `inputs`, also by
    // another spelling of its path or through a link.
    OutputFile(const std::string& path, const std::vector<std::string>& inputs);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Throws Failure; the file is then as it was.
    void Commit(const std::string& text);

private:
    std::string mPath;
    std::string mTemporaryPath;  // empty for a device or a pipe, which is written to directly
    int mDescriptor;
};

}  // namespace kzm::ModbusTool
