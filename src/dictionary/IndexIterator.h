#pragma once

#include <cstddef>
#include <iterator>

namespace kz::orba::VortaExtensionModbus::Device {

// Walks a container whose elements are made when they are asked for: its ValueAt(index).
template <typename Container>
class IndexIterator {
public:
    // As the standard wants them of an iterator.
    using iterator_category = std::input_iterator_tag;
    using iterator_concept = std::bidirectional_iterator_tag;
    using value_type = typename Container::value_type;
    using difference_type = std::ptrdiff_t;
    using reference = value_type;

    // Keeps a value for as long as `it->second` needs it.
    class pointer {
    public:
        // Takes the value, and leads to it.
        constexpr explicit pointer(value_type value) : mValue(value) {}
        constexpr const value_type* operator->() const { return &mValue; }

    private:
        value_type mValue;
    };

    // Of no container, only to be assigned; or of a container, which outlives the iterator, at a place up to its size.
    constexpr IndexIterator() = default;
    constexpr IndexIterator(const Container& container, std::size_t index) : mContainer(&container), mIndex(index) {}

    // The element, made anew each time. The place must be less than the size.
    value_type operator*() const { return mContainer->ValueAt(mIndex); }
    pointer operator->() const { return pointer(**this); }

    // Steps and comparison, which look at the place alone.
    constexpr IndexIterator& operator++() {
        ++mIndex;
        return *this;
    }
    constexpr IndexIterator operator++(int) { return {*mContainer, mIndex++}; }
    constexpr IndexIterator& operator--() {
        --mIndex;
        return *this;
    }
    constexpr IndexIterator operator--(int) { return {*mContainer, mIndex--}; }
    constexpr bool operator==(const IndexIterator& other) const { return mIndex == other.mIndex; }

private:
    const Container* mContainer = nullptr;
    std::size_t mIndex = 0;
};

}  // namespace kz::orba::VortaExtensionModbus::Device
