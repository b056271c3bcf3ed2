#include "Files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include "ExitStatus.h"
#include "Text.h"

namespace kzm::ModbusTool {

using namespace ModbusGateway;
namespace fs = std::filesystem;

namespace {

constexpr std::size_t MAX_FILE_SIZE = 64U << 20U;

[[noreturn]] void Fail(const std::string& path, const std::string& action, const std::string& reason) {
    throw Failure(ExitStatus::FILE_ERROR, path + ": cannot " + action + ": " + reason);
}

[[noreturn]] void FailToWrite(const std::string& path) {
    Fail(path, "write", std::generic_category().message(errno));
}

// Files are told apart by device and inode, so spellings, symbolic and hard links do not matter.
void RefuseInputs(const std::string& path, const std::vector<std::string>& inputs) {
    std::error_code ignored;
    for (const std::string& input : inputs) {
        if (fs::is_regular_file(path, ignored) && fs::equivalent(path, input, ignored)) {
            throw Failure(ExitStatus::WRONG_USAGE,
                          path + ": would be written over, but is read by this command; choose another file to write");
        }
    }
}

void RefuseErrors(const std::string& path, const Problems& problems) {
    if (HasError(problems)) {
        PrintProblems(std::cerr, path, problems);
        throw Failure(ExitStatus::FAULTY_INPUT, path + " has errors");
    }
}

}  // namespace

std::string ReadFile(const std::string& path) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) {
        Fail(path, "read", "Is a directory");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string text;
    char part[65536];
    while (file && text.size() <= MAX_FILE_SIZE) {
        file.read(part, sizeof part);
        text.append(part, static_cast<std::size_t>(file.gcount()));
    }
    if (text.size() > MAX_FILE_SIZE) {
        Fail(path, "read", "larger than 64 MiB");
    }
    if (!file.eof()) {
        Fail(path, "read", std::generic_category().message(errno));
    }
    return text;
}

void PrintProblems(std::ostream& stream, const std::string& path, const Problems& problems) {
    for (const Problem& problem : problems) {
        const char* const severity = problem.severity == Problem::Severity::ERROR ? ": error: " : ": warning: ";
        const std::string place = problem.pointer.empty() ? "" : problem.pointer + ": ";
        stream << path << ':' << problem.line << severity << Printable(place + problem.message) << '\n';
    }
}

std::unique_ptr<LoadedProfile> LoadProfile(const std::string& path) {
    ProfileLoader::Result result = ProfileLoader::Load(ReadFile(path));
    RefuseErrors(path, result.problems);
    return std::move(result.profile);
}

Capture LoadCapture(const std::string& path, const LoadedProfile& profile) {
    Problems problems;
    Capture capture = Capture::Parse(ReadFile(path), profile.GetDeviceFrames(), problems);
    RefuseErrors(path, problems);
    return capture;
}

Capture LoadCapture(const std::string& path) {
    Problems problems;
    Capture capture = Capture::Parse(ReadFile(path), problems);
    RefuseErrors(path, problems);
    return capture;
}

OutputFile::OutputFile(const std::string& path, const std::vector<std::string>& inputs) : mPath(path) {
    std::error_code ignored;
    RefuseInputs(path, inputs);
    const bool regular = fs::is_regular_file(path, ignored);
    if (regular) {
        mPath = fs::canonical(path);  // a link stays, its target is replaced
    }
    if (regular || (!path.empty() && !fs::exists(path, ignored))) {
        mTemporaryPath = mPath + ".part" + std::to_string(getpid());
    }
    const std::string& opened = mTemporaryPath.empty() ? mPath : mTemporaryPath;
    mDescriptor = open(opened.c_str(), O_WRONLY | O_CLOEXEC | (mTemporaryPath.empty() ? 0 : O_CREAT | O_EXCL), 0666);
    if (mDescriptor < 0) {
        FailToWrite(path);
    }
}

OutputFile::~OutputFile() {
    close(mDescriptor);
    if (!mTemporaryPath.empty()) {
        unlink(mTemporaryPath.c_str());
    }
}

void OutputFile::Commit(const std::string& text) {
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = write(mDescriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            FailToWrite(mPath);
        }
        written += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    if (mTemporaryPath.empty()) {
        return;
    }
    if (fsync(mDescriptor) != 0 || rename(mTemporaryPath.c_str(), mPath.c_str()) != 0) {
        FailToWrite(mPath);
    }
    mTemporaryPath.clear();
}

}  // namespace kzm::ModbusTool
