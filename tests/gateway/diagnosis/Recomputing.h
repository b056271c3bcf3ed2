#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <nlohmann/json.hpp>

namespace kzm::ModbusGateway {

// Has a script compute the steps of explanations again, from the bytes on the wire.
inline void ExpectRecomputed(const nlohmann::json& explanations) {
    std::FILE* const script = popen("python3 -B " KZM_SOURCE_DIR "/tests/tools/recompute.py", "w");
    ASSERT_NE(script, nullptr);
    std::fputs(explanations.dump().c_str(), script);
    EXPECT_EQ(pclose(script), 0);
}

}  // namespace kzm::ModbusGateway
