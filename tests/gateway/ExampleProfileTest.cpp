#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "gateway/Capture.h"
#include "gateway/ProfileLoader.h"
#include "kz/orba/VortaORBAObject.h"
#include "kzm/StandIn/Clock.h"

namespace kzm::ModbusGateway {

namespace {

using nlohmann::json;

constexpr std::size_t FEWEST_OBJECTS = 40;

std::string ReadFile(const std::string& name) {
    std::ifstream file(KZM_SOURCE_DIR "/profiles/" + name);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string TextOf(const Problems& problems) {
    std::string text;
    for (const Problem& problem : problems) {
        text += std::to_string(problem.line) + " " + problem.pointer + ": " + problem.message + "\n";
    }
    return text;
}

json ReadObject(const LoadedProfile& profile, const LoadedProfile::Object& object,
                const std::shared_ptr<RegisterCache>& cache) {
    kz::orba::VortaORBAObject target("", object.name, object.alias, json::object());
    const auto status = profile.model->GetVortaObjectValue(cache, /*flag=*/false, target);
    return {{"name", object.name},
            {"alias", object.alias},
            {"unit", object.unit},
            {"status", static_cast<std::int32_t>(status)},
            {"value", target.GetValue()}};
}

TEST(ExampleProfile, ItsCaptureBecomesTheExpectedObjects) {
    const ProfileLoader::Result loaded = ProfileLoader::Load(ReadFile("energy-meter.jsonc"));
    EXPECT_EQ(TextOf(loaded.problems), "");
    ASSERT_TRUE(loaded.profile);
    const LoadedProfile& profile = *loaded.profile;
    EXPECT_GE(profile.objects.size(), FEWEST_OBJECTS);

    Problems problems;
    const Capture capture = Capture::Parse(ReadFile("energy-meter.capture.json"), profile, problems);
    ASSERT_EQ(TextOf(problems), "");
    const auto cache = std::make_shared<RegisterCache>(profile.model->GetFrames());
    Capture::Restore(capture.snapshots.front(), *cache);
    const StandIn::StoppedClock clock(capture.snapshots.front().time);

    json expected = json::parse(ReadFile("energy-meter.expected.json"));
    ASSERT_EQ(expected.size(), profile.objects.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        expected[i].erase("why");  // in the program's words
        EXPECT_EQ(ReadObject(profile, profile.objects[i], cache).dump(1), expected[i].dump(1));
    }
}

}  // namespace

}  // namespace kzm::ModbusGateway
