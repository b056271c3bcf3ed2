#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

namespace kzm::ModbusGateway {

// Has a script compute the steps of explanations again, from the bytes on the wire.
inline void ExpectRecomputed(const nlohmann::json& explanations) {
    const std::string name = testing::TempDir() + "explanations-" + std::to_string(std::rand()) + ".json";
    std::ofstream(name) << explanations;
    const std::string command = "python3 -B " KZM_SOURCE_DIR "/tests/tools/recompute.py " + name;
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::filesystem::remove(name);
}

}  // namespace kzm::ModbusGateway
