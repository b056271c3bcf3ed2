#pragma once

#include "DataModel/StepObserver.h"

// What the read path needs of observers. A request without one costs a load and a branch per part.
namespace kzm::ModbusDeviceModel::DataModel {

// Initial-exec: one load instead of a call, in a shared library, too.
extern constinit thread_local StepObserver* tObserver __attribute__((visibility("hidden"), tls_model("initial-exec")));

// For the templates of decoding: tells an observer each step, or nobody and is compiled away.
struct Watched {
    static constexpr bool IS_WATCHED = true;
    StepObserver& observer;
    void Tell(const Step& step) const { observer.See(step); }
};
struct Unwatched {
    static constexpr bool IS_WATCHED = false;
    void Tell(const Step&) const {}
};

// Why a value of a quality is not Good.
constexpr Reason ReasonOf(DeviceCache::_Quality_t quality) {
    if (quality == DeviceCache::QUALITY_GOOD) {
        return Reason::GOOD;
    }
    if (quality == DeviceCache::QUALITY_UNINITIALISED) {
        return Reason::NO_DATA;
    }
    return quality == DeviceCache::QUALITY_BAD ? Reason::LAST_VALUE : Reason::QUESTIONABLE;
}

}  // namespace kzm::ModbusDeviceModel::DataModel

// Tells a step, in braces, to an observer, if there is one; only then is the step built.
#define KZM_TELL(observer, ...)                                  \
    do {                                                         \
        if (auto* const kzmObserver = (observer)) [[unlikely]] { \
            kzmObserver->See(__VA_ARGS__);                       \
        }                                                        \
    } while (false)
