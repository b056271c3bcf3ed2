#include <dlfcn.h>
#include <malloc.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

// Loads a library into this process, whose dependencies are loaded before, and prints what that took as JSON.
// Usage: load-cost DEPENDENCY LIBRARY

namespace {

void* Load(const char* path) {
    void* const library = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
    }
    return library;
}

// Memory of the library's mappings that is this process's own.
long PrivateKilobytes(const std::string& library) {
    std::ifstream maps("/proc/self/smaps");
    bool isInLibrary = false;
    long total = 0;
    for (std::string line; std::getline(maps, line);) {
        if (line.find('-') < line.find(' ')) {
            isInLibrary = line.ends_with(library);
        } else if (isInLibrary && line.starts_with("Private_Dirty:")) {
            total += std::stol(line.substr(line.find(':') + 1));
        }
    }
    return total;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3 || Load(arguments[1]) == nullptr) {
        return 1;
    }
    const std::size_t heap = mallinfo2().uordblks;
    const auto start = std::chrono::steady_clock::now();
    if (Load(arguments[2]) == nullptr) {
        return 1;
    }
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
    std::printf("{\"us\": %.1f, \"heap\": %zu, \"private\": %ld}\n", time.count(), mallinfo2().uordblks - heap,
                PrivateKilobytes(arguments[2]));
}
