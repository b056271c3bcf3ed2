#pragma once

#include <cstdint>

namespace kzm::edm {

// The kind of device that a model describes. Its values are the platform's; it can hold any number.
enum class ModelBaseConcept : std::int32_t {};

}  // namespace kzm::edm
