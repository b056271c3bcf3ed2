#include "dictionary/ClassPool.h"

#include <algorithm>
#include <array>
#include <limits>

namespace kz::orba::VortaExtensionModbus::Device {

namespace {

// Calls the function with prefix and rest of every class, in the order of their places.
template <typename Function>
constexpr void ForEachClass(Function&& function) {
    for (const ClassNames::List& list : ClassNames::LISTS) {
        for (const std::string_view name : list.names) {
            function(list.prefix, name);
        }
    }
}

constexpr std::size_t CLASS_COUNT = DYNAMIC_CLASS_COUNT + std::size(ClassNames::NOT_DYNAMIC);

constexpr std::size_t CHARACTERS = [] {
    std::size_t size = 0;
    ForEachClass([&](std::string_view prefix, std::string_view name) { size += prefix.size() + name.size(); });
    return size;
}();
static_assert(CHARACTERS <= std::numeric_limits<std::uint16_t>::max());

struct ClassPool {
    std::array<char, CHARACTERS> text{};
    std::array<std::uint16_t, CLASS_COUNT + 1> begins{};  // of each name, and the end of the last
};

constexpr ClassPool POOL = [] {
    ClassPool pool;
    std::size_t index = 0;
    auto* end = pool.text.begin();
    ForEachClass([&](std::string_view prefix, std::string_view name) {
        end = std::copy(prefix.begin(), prefix.end(), end);
        end = std::copy(name.begin(), name.end(), end);
        pool.begins[++index] = static_cast<std::uint16_t>(end - pool.text.begin());
    });
    return pool;
}();

constexpr std::string_view NameAt(std::size_t index) {
    const std::size_t begin = POOL.begins[index];
    return {POOL.text.data() + begin, POOL.begins[index + 1] - begin};
}

constexpr bool DynamicClassesAscend() {
    for (std::size_t i = 1; i < DYNAMIC_CLASS_COUNT; ++i) {
        if (!(NameAt(i - 1) < NameAt(i))) {
            return false;
        }
    }
    return true;
}
static_assert(DYNAMIC_CLASS_COUNT == 263);
static_assert(DynamicClassesAscend(), "the dynamic classes must be in byte order, each once");

}  // namespace

std::string_view ClassNameAt(std::size_t index) {
    return NameAt(index);
}

}  // namespace kz::orba::VortaExtensionModbus::Device
