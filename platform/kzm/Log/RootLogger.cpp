#include "kzm/Log/RootLogger.h"

#include <cxxabi.h>

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>
#include <type_traits>
#include <utility>

namespace kzm::Log {

namespace {

struct State {
    std::mutex mutex;
    RootLogger::Sink sink;
};

// Never destroyed, because static objects of other files may log while the process ends; not on the heap, because the
// first line may report that memory has run out.
State& GetState() {
    alignas(State) static std::byte place[sizeof(State)];
    static State& state = *new (place) State;
    return state;
}

void Deliver(State& state, OrbaLogLevel level, const char* line) {
    try {
        const std::lock_guard lock(state.mutex);
        if (state.sink) {
            state.sink(level, line);
        } else {
            std::fprintf(stderr, "%s\n", line);
        }
    } catch (abi::__forced_unwind&) {
        throw;  // the thread is being cancelled
    } catch (...) {
        // The line is lost; whoever wrote it goes on.
    }
}

}  // namespace

RootLogger& RootLogger::GetInstance() {
    static RootLogger instance;
    static_assert(std::is_trivially_destructible_v<RootLogger>);
    return instance;
}

void RootLogger::SetLevel(OrbaLogLevel level) {
    mLevel = level;
}

void RootLogger::SetSink(Sink sink) {
    State& state = GetState();
    const std::lock_guard lock(state.mutex);
    state.sink = std::move(sink);
}

void RootLogger::Print(OrbaLogLevel level, const char* format, ...) {
    if (level > GetLevel()) {
        return;
    }
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (length < static_cast<int>(sizeof text)) {
        Deliver(GetState(), level, length < 0 ? format : text);
    } else {
        const auto size = static_cast<std::size_t>(length) + 1;
        const std::unique_ptr<char[]> longText(new (std::nothrow) char[size]);
        if (longText) {
            std::vsnprintf(longText.get(), size, format, again);
        }
        Deliver(GetState(), level, longText ? longText.get() : text);
    }
    va_end(again);
}

}  // namespace kzm::Log
