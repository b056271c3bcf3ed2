#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "dictionary/DictionaryText.h"

namespace kz::orba::VortaExtensionModbus::Device {

// What the dictionary's containers share: a read-only std::map or std::set over constants of the library, in byte order
// of the keys. The container has data() and size(). Iterators and references are valid as long as the library is
// loaded, whatever becomes of the container. Thread-safe.
template <typename Container, typename Value>
class SortedConstants {
public:
    // As of a standard container.
    using key_type = DictionaryText;
    using value_type = Value;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = const Value&;
    using const_reference = const Value&;
    using pointer = const Value*;
    using const_pointer = const Value*;
    using iterator = const Value*;
    using const_iterator = const Value*;
    using reverse_iterator = std::reverse_iterator<const_iterator>;
    using const_reverse_iterator = reverse_iterator;

    // All elements in byte order of their keys, and in the reverse of it.
    const_iterator begin() const { return Self().data(); }
    const_iterator end() const { return begin() + Self().size(); }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }
    const_reverse_iterator crbegin() const { return rbegin(); }
    const_reverse_iterator crend() const { return rend(); }
    bool empty() const { return Self().size() == 0; }

    // The first element whose key is not less than the key; end() if there is none.
    const_iterator lower_bound(std::string_view key) const {
        return std::lower_bound(begin(), end(), key,
                                [](const Value& value, std::string_view wanted) { return KeyOf(value) < wanted; });
    }

    // The first element whose key is greater than the key; end() if there is none.
    const_iterator upper_bound(std::string_view key) const { return equal_range(key).second; }

    // The elements with that whole key, of which there is at most one.
    std::pair<const_iterator, const_iterator> equal_range(std::string_view key) const {
        const const_iterator first = lower_bound(key);
        return {first, first != end() && KeyOf(*first) == key ? std::next(first) : first};
    }
    const_iterator find(std::string_view key) const {
        const auto [first, last] = equal_range(key);
        return first == last ? end() : first;
    }
    bool contains(std::string_view key) const { return find(key) != end(); }
    size_type count(std::string_view key) const { return contains(key) ? 1 : 0; }

    // What a map holds under that whole key. Throws std::out_of_range, which names the key, if there is nothing.
    const auto& at(std::string_view key) const requires requires(const Value& value) { value.second; }
    {
        const const_iterator found = find(key);
        if (found == end()) {
            throw std::out_of_range("the dictionary has no \"" + std::string(key) + '"');
        }
        return found->second;
    }

private:
    static DictionaryText KeyOf(DictionaryText value) { return value; }
    template <typename Mapped>
    static DictionaryText KeyOf(const std::pair<DictionaryText, Mapped>& value) {
        return value.first;
    }

    const Container& Self() const { return static_cast<const Container&>(*this); }
};

}  // namespace kz::orba::VortaExtensionModbus::Device
