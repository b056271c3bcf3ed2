#pragma once

#include <memory>

namespace kzm::Benchmark {

// One object, asked for again and again.
class Requests {
public:
    virtual ~Requests() = default;
    // Makes the cached frame fresh, for the next 12 seconds.
    virtual void Refresh() = 0;
    virtual void Request() = 0;
};

}  // namespace kzm::Benchmark

// The same code three times: the library's, without its log lines, and without its observers. `labelled`: the value is
// an enumeration, whose label is translated.
namespace kzm::ModbusDeviceModel {
[[gnu::visibility("default")]] std::unique_ptr<kzm::Benchmark::Requests> MakeRequests(bool labelled);
}
namespace kzm::WithoutLogging {
[[gnu::visibility("default")]] std::unique_ptr<kzm::Benchmark::Requests> MakeRequests(bool labelled);
}
namespace kzm::WithoutWatching {
[[gnu::visibility("default")]] std::unique_ptr<kzm::Benchmark::Requests> MakeRequests(bool labelled);
}
