#include "gateway/modbus/RegisterProbe.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace kzm::ModbusGateway::RegisterProbeTest {

using Outcome = ModbusConnection::Outcome;
using State = RegisterProbe::State;

// A device without some of its registers; the others hold their own addresses.
struct Device {
    std::set<std::size_t> missing = {};
    std::set<std::size_t> silent = {};
    std::size_t most = 125;
    std::uint8_t tooMany = 3;  // the exception for larger requests; 0: silence
    std::uint8_t absent = 2;   // that for missing registers
    std::size_t lost = 0;      // every so many-th answer
    std::size_t stopAt = 0;    // the request that is interrupted
    std::size_t requests = 0;

    ModbusConnection::Result Answer(std::uint16_t first, std::uint16_t count, std::uint16_t* values) {
        ++requests;
        if (requests == stopAt) {
            return {Outcome::STOPPED, {}};
        }
        const auto holds = [&](const auto& set) {
            const auto next = set.lower_bound(first);
            return next != set.end() && *next < std::size_t{first} + count;
        };
        if ((lost != 0 && requests % lost == 0) || holds(silent) || (count > most && tooMany == 0)) {
            return {Outcome::NO_ANSWER, "silence"};
        }
        if (count > most || holds(missing)) {
            return {Outcome::EXCEPTION, "refused", count > most ? tooMany : absent};
        }
        for (std::uint16_t i = 0; i < count; ++i) {
            values[i] = static_cast<std::uint16_t>(first + i);
        }
        return {Outcome::ANSWERED, {}};
    }
    RegisterProbe Probe(std::uint16_t first, std::uint16_t last) {
        return {first, last, 125, [this](auto... request) { return Answer(request...); }};
    }
};

// How many registers differ from what the device has; those that were not asked for count as missing.
std::size_t Wrong(const Device& device, const RegisterProbe& probe, std::size_t first) {
    std::size_t wrong = 0;
    for (const auto& [state, value, exception] : probe.GetRegisters()) {
        const bool answers = !device.missing.contains(first) && !device.silent.contains(first);
        wrong += answers != (state == State::ANSWERED) || (answers && value != first) ? 1 : 0;
        ++first;
    }
    return wrong;
}

// Holes of 1 to `longest` registers with as many that answer between them, at least `apart`.
std::set<std::size_t> RandomHoles(std::mt19937& random, std::size_t longest, std::size_t apart, std::size_t& count) {
    std::set<std::size_t> holes;
    for (std::size_t place = random() % 100; place < 2000; place += apart + random() % 200, ++count) {
        for (std::size_t length = 1 + random() % longest; length-- > 0 && place < 2000; ++place) {
            holes.insert(place);
        }
    }
    return holes;
}

TEST(RegisterProbe, HolesAreFoundExactlyWithTheRequestsAllowed) {
    std::mt19937 random(11);
    for (const auto& [longest, each] : {std::pair<std::size_t, double>{1, 15.93}, {3, 15.93}, {8, 15.93}, {20, 18}}) {
        for (int i = 0; i < 50; ++i) {
            std::size_t holes = 0;
            Device device{.missing = RandomHoles(random, longest, longest, holes),
                          .absent = static_cast<std::uint8_t>(i % 2 + 2)};
            RegisterProbe probe = device.Probe(0, 1999);
            EXPECT_EQ(probe.Run().outcome, Outcome::ANSWERED);
            EXPECT_EQ(Wrong(device, probe, 0), 0U) << longest;
            EXPECT_LE(static_cast<double>(device.requests), 16.0 + static_cast<double>(holes) * each)
                << longest << ' ' << holes;
            EXPECT_EQ(probe.GetRequestCount(), device.requests);
        }
    }
}

TEST(RegisterProbe, ThoroughFindsWhatHidesBetweenHoles) {
    std::mt19937 random(12);
    Device device;
    for (std::size_t place = 0; place < 1000; ++place) {
        if (random() % 10 != 0) {
            device.missing.insert(place);
        }
    }
    RegisterProbe probe = device.Probe(0, 999);
    probe.Run(/*thorough=*/true);
    EXPECT_EQ(Wrong(device, probe, 0), 0U);
    EXPECT_EQ(probe.GetSettledCount(), 1000U);
}

TEST(RegisterProbe, SizesSilenceAndLostAnswersAreToldApart) {
    const std::tuple<Device, std::uint16_t, std::uint16_t> rows[] = {
        {{.missing = {0, 7, 8, 199, 999}}, 125, 0},
        {{.missing = {0, 7, 8, 199, 999}, .most = 50}, 50, 51},
        {{.missing = {300}, .most = 124, .tooMany = 2}, 124, 125},
        {{.missing = {2, 3}, .most = 1, .tooMany = 2}, 1, 2},
        {{.missing = {9}, .most = 32, .tooMany = 0}, 32, 33},
        {{.missing = {9}, .silent = {0, 100, 101, 102, 103}}, 125, 0},
        {{.missing = {50}, .lost = 7}, 125, 0},
    };
    for (auto [device, largest, refused] : rows) {
        RegisterProbe probe = device.Probe(0, 999);
        EXPECT_EQ(probe.Run().outcome, Outcome::ANSWERED);
        EXPECT_EQ(Wrong(device, probe, 0), 0U) << largest;
        EXPECT_EQ(probe.GetLargestRequest(), largest);
        EXPECT_EQ(probe.GetRefusedSize(), refused);
        for (const std::size_t place : device.silent) {
            EXPECT_EQ(probe.GetRegisters()[place].state, State::SILENT) << place;
        }
    }
}

TEST(RegisterProbe, AnInterruptedOneGoesOnWithWhatItKnows) {
    Device device{.missing = {65100, 65101, 65535}, .stopAt = 9};
    RegisterProbe probe = device.Probe(65000, 65535);
    EXPECT_EQ(probe.Run().outcome, Outcome::STOPPED);
    EXPECT_LT(probe.GetSettledCount(), 536U);
    Device again{.missing = device.missing};
    RegisterProbe next = again.Probe(65000, 65535);
    for (std::size_t i = 0; i < probe.GetRegisters().size(); ++i) {
        next.Know(static_cast<std::uint16_t>(65000 + i), probe.GetRegisters()[i]);
    }
    next.Know(10, {State::REFUSED});
    EXPECT_EQ(probe.Run().outcome, Outcome::ANSWERED);
    EXPECT_EQ(next.Run().outcome, Outcome::ANSWERED);
    EXPECT_EQ(Wrong(device, probe, 65000) + Wrong(again, next, 65000), 0U);
    EXPECT_LT(again.requests, device.requests);
}

TEST(RegisterProbe, ADeviceThatAnswersNothingOrNotTheFunctionIsGivenUp) {
    Device dead{.lost = 1};
    EXPECT_EQ(dead.Probe(0, 9999).Run().outcome, Outcome::NO_ANSWER);
    EXPECT_EQ(dead.requests, 10U);
    Device unable{.missing = {0}, .absent = 1};
    EXPECT_EQ(unable.Probe(0, 0).Run().exception, 1);
    Device empty;
    for (std::size_t place = 0; place < 10000; ++place) {
        empty.missing.insert(place);
    }
    RegisterProbe probe = empty.Probe(0, 9999);
    EXPECT_EQ(probe.Run().outcome, Outcome::ANSWERED);
    EXPECT_LE(empty.requests, 140U);
}

}  // namespace kzm::ModbusGateway::RegisterProbeTest
