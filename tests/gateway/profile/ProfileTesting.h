#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "gateway/cache/RegisterCache.h"
#include "gateway/profile/ProfileLoader.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusGateway {

using ModbusDeviceModel::DeviceCache::QUALITY_BAD;
using ModbusDeviceModel::DeviceCache::QUALITY_GOOD;
using ModbusDeviceModel::DeviceCache::QUALITY_QUESTIONABLE;
using nlohmann::json;
using StandIn::StoppedClock;

inline constexpr std::uint64_t NOW = 1'000'000;
inline constexpr const char* NOW_TEXT = "1970-01-01T00:16:40.000Z";

inline std::string ReadFile(const std::string& name) {
    std::ifstream file(KZM_SOURCE_DIR "/" + name);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::string Replaced(std::string text, const std::string& old, const std::string& replacement) {
    const auto place = text.find(old);
    EXPECT_NE(place, std::string::npos) << old;
    return text.replace(place, old.size(), replacement);
}

inline std::string Written(const Problems& problems) {
    std::string text;
    for (const Problem& problem : problems) {
        text += std::string(problem.severity == Problem::Severity::ERROR ? "" : "warning ") +
                std::to_string(problem.line) + " " + problem.pointer + ": " + problem.message + "\n";
    }
    return text;
}

// A cache whose first frame was received now.
inline std::shared_ptr<RegisterCache> CacheOf(const LoadedProfile& profile, std::vector<std::uint16_t> registers) {
    auto cache = std::make_shared<RegisterCache>(profile.model->GetFrames());
    registers.resize(profile.model->GetFrames()[0].mLength);
    cache->Update(0, registers, NOW);
    return cache;
}

inline json ObjectOf(const LoadedProfile& profile, const std::shared_ptr<RegisterCache>& cache, const std::string& name,
                     const std::string& alias = "", int status = 0) {
    kz::orba::VortaORBAObject object("", name, alias, json::object());
    EXPECT_EQ(static_cast<int>(profile.model->GetVortaObjectValue(cache, /*flag=*/false, object)), status) << name;
    return object.GetValue();
}

// Splits "a => b => c => d" into its four parts; missing ones are empty.
inline std::vector<std::string> SplitRow(std::string line) {
    std::vector<std::string> parts;
    for (line.insert(0, " "); parts.size() < 4;) {
        const auto end = std::min(line.find(" =>"), line.size());
        parts.push_back(end == 0 ? "" : line.substr(1, end - 1));
        line.erase(0, end + 3);
    }
    return parts;
}

// Applies one change per line to a profile: text to replace => replacement => how the one resulting problem starts =>
// what else its text contains. Lines that begin with "//" are headings.
inline void ExpectOneProblemEach(const std::string& profile, const std::string& changes) {
    std::istringstream lines(changes);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.starts_with("//")) {
            continue;
        }
        SCOPED_TRACE(line);
        const auto parts = SplitRow(line);
        const auto loaded = ProfileLoader::Load(Replaced(profile, parts[0], parts[1]));
        const std::string problems = Written(loaded.problems);
        EXPECT_EQ(loaded.problems.size(), 1U) << problems;
        EXPECT_TRUE(problems.starts_with(parts[2])) << problems;
        EXPECT_NE(problems.find(parts[3]), std::string::npos) << problems;
        EXPECT_EQ(loaded.profile != nullptr, problems.starts_with("warning"));
    }
}

}  // namespace kzm::ModbusGateway
