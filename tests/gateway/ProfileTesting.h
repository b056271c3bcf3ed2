#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <random>
#include <span>
#include <string>

#include "gateway/ProfileLoader.h"
#include "gateway/RegisterCache.h"
#include "kz/orba/VortaORBAObject.h"

namespace kzm::ModbusGateway {

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

inline nlohmann::json ObjectOf(const LoadedProfile& profile, const std::shared_ptr<RegisterCache>& cache,
                               const std::string& name, const std::string& alias = "", int status = 0) {
    kz::orba::VortaORBAObject object("", name, alias, nlohmann::json::object());
    EXPECT_EQ(static_cast<int>(profile.model->GetVortaObjectValue(cache, /*flag=*/false, object)), status) << name;
    return object.GetValue();
}

// A change of a profile, and the one problem that it makes.
struct Fault {
    const char* old;
    const char* replacement;
    const char* problem;  // the beginning
    const char* remedy;   // further on in it
};

inline void ExpectOneProblemEach(const std::string& profile, std::span<const Fault> faults) {
    for (const Fault& fault : faults) {
        const auto loaded = ProfileLoader::Load(Replaced(profile, fault.old, fault.replacement));
        const std::string problems = Written(loaded.problems);
        EXPECT_EQ(loaded.problems.size(), 1U) << fault.replacement << "\n" << problems;
        EXPECT_TRUE(problems.starts_with(fault.problem)) << fault.problem << "\n" << problems;
        EXPECT_NE(problems.find(fault.remedy), std::string::npos) << fault.remedy << "\n" << problems;
        EXPECT_EQ(loaded.profile != nullptr, problems.starts_with("warning"));
    }
}

// Changes that keep most of a text whole, so that every section is reached; the same ones in each run.
inline void ExpectProfileOrErrorForVariantsOf(const std::string& profile) {
    const std::string tokens[] = {"\"", "{", "}",  "[]", ":",     ",",     "null", "true", "-1",        "\"0x\"",
                                  "~",  "/", "{}", "34", "1e300", "65535", "\xFF", "\n",   "\"clock\"", "\"constant\""};
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        std::string text = profile;
        for (int change = 0; change < 2; ++change) {
            const auto begin = text.find_first_of(":,[{\"", random() % text.size());
            const auto end = text.find_first_of(",]}:\"", begin == std::string::npos ? begin : begin + 1);
            if (end != std::string::npos) {
                text.replace(begin + 1, end - begin - 1, tokens[random() % std::size(tokens)]);
            }
        }
        const auto loaded = ProfileLoader::Load(text);
        ASSERT_EQ(loaded.profile == nullptr, HasError(loaded.problems)) << text;
    }
}

}  // namespace kzm::ModbusGateway
