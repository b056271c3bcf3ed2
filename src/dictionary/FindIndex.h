#pragma once

#include <cstddef>
#include <string_view>

namespace kz::orba::VortaExtensionModbus::Device {

// Where the text stands among `size` texts in byte order, each once; `size` where it does not.
template <typename TextAt>
std::size_t FindIndex(std::string_view text, std::size_t size, TextAt textAt) {
    std::size_t first = 0;
    for (std::size_t count = size; count > 0;) {
        const std::size_t half = count / 2;
        if (textAt(first + half) < text) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first < size && textAt(first) == text ? first : size;
}

}  // namespace kz::orba::VortaExtensionModbus::Device
