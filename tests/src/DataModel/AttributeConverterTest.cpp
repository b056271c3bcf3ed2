#include <pthread.h>
#include <sched.h>

#include <future>

#include "DataModel/AttributeConstant.h"
#include "kzm/edm/dictionary/EdmEnumToEdmValue.h"
#include "kzm/edm/dictionary/EdmEnumToIotValue.h"
#include "src/TestCache.h"

namespace kzm::ModbusDeviceModel::Test::AttributeConverterTest {

std::string Ask(AttributeConverter& converter, const std::shared_ptr<CacheReadAccessInterface>& cache,
                bool ignoreCacheAge = false, bool edm = false) {
    return OutcomeOf([&](_Quality_t& quality, json& value) {
        return edm ? converter.GetEdmValue(cache, true, ignoreCacheAge, quality, value)
                   : converter.GetIotValue("urn", cache, true, ignoreCacheAge, quality, value);
    });
}

// A cache whose answer is a function of the test.
struct ToldCache : TestCache {
    std::uint32_t ReadFrame(const std::uint8_t&, const std::uint16_t&, std::uint8_t, std::uint8_t* buffer,
                            std::uint32_t, _Quality_t& quality) const override {
        buffer[0] = 1;
        return read(quality);
    }
    std::function<std::uint32_t(_Quality_t&)> read;
};

TEST(AttributeConverter, OnlyAFrameUpdatedWithinTheLastTwelveSecondsIsFresh) {
    const auto cache = MakeCache("0007");
    const auto converter = MakeConverter({});
    const std::tuple<std::uint64_t, std::uint64_t, bool, const char*> ROWS[] = {
        {NOW, NOW, false, "0 Good 7"},
        {NOW + (1ULL << 42), NOW + (1ULL << 42) - 12000, false, "0 Good 7"},  // past 2038 and 2106
        {0, 1, false, "42 Questionable \"before\""},
        {NOW, ~0ULL, false, "42 Questionable \"before\""},
        {NOW, NOW - 12000, false, "0 Good 7"},
        {NOW, NOW - 12001, false, "42 Questionable \"before\""},
        {NOW, NOW + 1, false, "42 Questionable \"before\""},
        {5, 0, false, "42 Questionable \"before\""},
        {NOW, 0, true, "0 Good 7"},
        {NOW, NOW - 12001, true, "0 Good 7"},
        {NOW, NOW + 1, true, "0 Good 7"}};
    for (const auto& [now, timestamp, ignoreCacheAge, expected] : ROWS) {
        const StoppedClock clock(now);
        cache->frames[0].timestamp = timestamp;
        EXPECT_EQ(Ask(*converter, cache, ignoreCacheAge), expected) << timestamp << ignoreCacheAge;
    }
}

TEST(AttributeConverter, TheCachesQualityIsPassedOnAndOnlyUninitialisedIsNoValue) {
    const StoppedClock clock(NOW);
    const auto cache = MakeCache("0007");
    const char* const expected[] = {
        "0 UNKNOWN 7", "42 Uninitialised \"before\"", "0 Good 7", "0 Bad 7", "0 Questionable 7", "0 UNKNOWN 7"};
    for (int quality = -1; quality < 5; ++quality) {
        cache->frames[0].quality = static_cast<_Quality_t>(quality);
        EXPECT_EQ(Ask(*MakeConverter({}), cache, true), expected[quality + 1]);
    }
}

TEST(AttributeConverter, WhatCannotBeReadOrDecodedIsNoValue) {
    const StoppedClock clock(NOW);
    CapturedLog log(OrbaLogLevel::ERROR);
    const auto cache = MakeCache("FFFF");
    EXPECT_EQ(Ask(*MakeConverter({.pattern = "0xFFFF"}), cache), "42 Good null");
    EXPECT_EQ(Ask(*MakeConverter({.code = 37}), cache), "42 Good \"before\"");
    EXPECT_EQ(Ask(*MakeConverter({.scale = 2}), cache), "42 Good null");
    EXPECT_TRUE(log.Lines().empty());
    EXPECT_EQ(Ask(*MakeConverter({.pattern = "0xZZZZ"}), cache), "42 Good \"before\"");
    EXPECT_EQ(Ask(*MakeConverter({.frame = 9}), cache), "42 Questionable \"before\"");
    EXPECT_EQ(log.Joined(OrbaLogLevel::ERROR), R"(
[DataModel::AttributeConverter] [GetValueFromElementData] Failed to read frame with index=0: stoi
[DataModel::AttributeConverter] [GetValueFromElementData] Failed to read frame with index=9: map::at)");
}

TEST(AttributeConverter, ACacheThatLiesIsNeverBelieved) {
    const StoppedClock clock(NOW);
    const CapturedLog quiet(OrbaLogLevel::NONE);
    const auto cache = std::make_shared<ToldCache>();
    const auto ask = [&](std::uint32_t size, const Traits& traits = {}) {
        cache->read = [=](auto&) { return size; };
        return Ask(*MakeConverter(traits), cache);
    };
    const std::string nothing = "42 Questionable \"before\"";
    EXPECT_EQ(ask(257), nothing);
    EXPECT_EQ(ask(256), nothing);  // past what an element can hold
    EXPECT_EQ(ask(~0U), nothing);
    EXPECT_EQ(ask(2), "0 Questionable 256");  // without a quality
    EXPECT_EQ(ask(1), "0 Questionable 1");
    EXPECT_EQ(ask(0), nothing);
    EXPECT_EQ(ask(3, {.code = 14, .registers = 2}), "0 Questionable 65536");
    cache->read = [](auto& quality) -> std::uint32_t { throw quality = QUALITY_BAD, std::runtime_error("gone"); };
    EXPECT_EQ(Ask(*MakeConverter({}), cache), "42 Bad \"before\"");
    cache->read = [](auto&) -> std::uint32_t { throw 7; };
    EXPECT_EQ(Ask(*MakeConverter({}), cache), nothing);
}

// pthread_cancel unwinds a request that waits within the cache or the log.
TEST(ThreadsAttributeConverter, ACancelledThreadEndsWithinTheCacheAndWithinALogLine) {
    const auto isCancelled = [](std::function<void()> request, std::promise<void>& isWaiting) {
        pthread_t thread{};
        const auto run = [](void* function) -> void* {
            (*static_cast<std::function<void()>*>(function))();
            return nullptr;
        };
        pthread_create(&thread, nullptr, run, &request);
        isWaiting.get_future().wait();
        pthread_cancel(thread);
        void* result = nullptr;
        pthread_join(thread, &result);
        return result == PTHREAD_CANCELED;
    };
    const CapturedLog restoring(OrbaLogLevel::ERROR);
    std::promise<void> inCache, inLog;
    const auto waitIn = [](std::promise<void>& place) -> std::uint32_t {
        place.set_value();
        for (;;) {
            pthread_testcancel();  // ThreadSanitizer loses track of a thread that is cancelled in a system call
            sched_yield();
        }
    };
    const auto cache = std::make_shared<ToldCache>();
    cache->read = [&](auto&) { return waitIn(inCache); };
    EXPECT_TRUE(isCancelled([&] { Ask(*MakeConverter({}), cache, true); }, inCache));
    Log::RootLogger::GetInstance().SetSink([&](auto, const char*) { waitIn(inLog); });
    EXPECT_TRUE(isCancelled([&] { Ask(*MakeConverter({}), nullptr); }, inLog));
}

TEST(AttributeConverter, ReadingIsLoggedStepByStep) {
    const StoppedClock clock(NOW);
    CapturedLog log;
    const auto cache = MakeCache("0007");
    const auto converter = MakeConverter({});
    Ask(*converter, nullptr);
    Ask(*converter, cache);
    cache->frames[0].timestamp = 0;
    Ask(*converter, cache, false, true);
    EXPECT_EQ(log.Joined(), R"(
3[DataModel::AttributeConverter] [GetValueFromElementData] ERROR CacheReadAccess=(nil) or frame index=0
7[DataModel::AttributeConverter][trace] [GetIotValue] (urn=urn, address=100) value="before", quality=Questionable, status = invalid argument (1)
7[DataModel::AttributeConverter][trace] [GetValueFromElementData] (frame=0, address=100, length=1) value=7, quality=Good, status = ok (0)
7[DataModel::AttributeConverter][trace] [GetIotValue] (urn=urn, address=100) value=7, quality=Good, status = ok (0)
6[DataModel::AttributeConverter] [GetValueFromElementData] Cannot read frame with index=0, cache is out of date
7[DataModel::AttributeConverter][trace] [GetValueFromElementData] (frame=0, address=100, length=1) value="before", quality=Questionable, status = value not available (42)
7[DataModel::AttributeConverter][trace] [GetEdmValue] (address=100) value="before", quality=Questionable, status = value not available (42))");
}

TEST(AttributeConverter, AnElementInNoFrameIsAnInvalidArgument) {
    std::set<std::uint8_t> frames{3};
    EXPECT_EQ(Number(MakeConverter({.frame = 255})->ComputeAndGetFrameIndexes(frames)), 1);
    EXPECT_EQ(Number(MakeConverter({.frame = 7})->ComputeAndGetFrameIndexes(frames)), 0);
    EXPECT_EQ(frames, (std::set<std::uint8_t>{3, 7}));
    const CapturedLog quiet(OrbaLogLevel::NONE);
    EXPECT_EQ(Ask(*MakeConverter({.frame = 255}), MakeCache("0001"), true), "1 Questionable \"before\"");
}

TEST(AttributeConverter, AnEnumerationLabelIsTranslatedForTheUrn) {
    const StoppedClock clock(NOW);
    edm::dictionary::EdmEnumToIotValue::SetLabel("urn", "Closed", true);
    edm::dictionary::EdmEnumToEdmValue::SetLabel("Closed", 2);
    const auto pairs = std::make_shared<Pairs>(Pairs{{1U, "Closed"}, {2U, "A label that no dictionary knows"}});
    const auto converter = MakeConverter({.code = 9, .pairs = pairs});
    const auto number = MakeConverter({.code = 2, .pairs = pairs});
    const auto cache = MakeCache("0001");
    CapturedLog log(OrbaLogLevel::INFORMATION);
    EXPECT_TRUE(converter->HasEnumOutput());
    EXPECT_EQ(Ask(*converter, cache), "0 Good true");
    EXPECT_EQ(Ask(*converter, cache, false, true), "0 Good 2");
    EXPECT_TRUE(log.Lines().empty());
    EXPECT_EQ(Ask(*number, cache), "42 Good 1");
    EXPECT_EQ(Ask(*number, cache, false, true), "42 Good 1");
    cache->frames[0].bytes = Hex("0002");
    EXPECT_EQ(Ask(*converter, cache), "44 Good \"A label that no dictionary knows\"");
    EXPECT_EQ(Ask(*converter, cache, false, true), "44 Good \"A label that no dictionary knows\"");
    cache->frames[0].bytes = Hex("0003");
    EXPECT_EQ(Ask(*converter, cache), "42 Good null");
    EXPECT_EQ(Ask(*converter, nullptr, false, true), "1 Questionable \"before\"");
    EXPECT_EQ(log.Joined(), R"(
3[DataModel::AttributeConverter] [GetIotValue] (urn=urn, address=100) Expecting a string for 1
3[DataModel::AttributeConverter] [GetEdmValue] (address=100) Expecting a string as value, got:1
3[DataModel::AttributeConverter] [GetIotValue] (urn=urn, address=100) Failed to convert A label that no dictionary knows to iot value
3[DataModel::AttributeConverter] [GetEdmValue] (address=100) Failed to convert A label that no dictionary knows to edm value
6[DataModel::AttributeConverter] [GetIotValue] (urn=urn, address=100) Failed to get value from element data, status = value not available (42)
3[DataModel::AttributeConverter] [GetValueFromElementData] ERROR CacheReadAccess=(nil) or frame index=0
3[DataModel::AttributeConverter] [GetEdmValue] (address=100) Failed to get value from element data, status = invalid argument (1))");
}

TEST(AttributeConverter, DescribesItselfByItsElement) {
    Traits traits{.code = 44, .scale = 0.5, .offset = 2, .order = ByteOrderingEnum::LITTLE_ENDIAN_WORDS};
    traits.pairs = std::make_shared<Pairs>();
    traits.registers = 4;
    traits.frame = 7;
    const auto converter = MakeConverter(traits);
    const auto information = converter->GetModbusMeasurementInformation();
    EXPECT_EQ(information.mLogicCode, LogicCodeIdentifier{44});
    EXPECT_EQ(information.mOffset, 2.0F);
    EXPECT_TRUE(information.mEnumerationPairs);
    EXPECT_EQ(information.mBitmask->size(), 256U);
    EXPECT_EQ(json::parse(converter->ToJson()),
              json::parse(R"({"registerAddress": 100, "nbRegisters": 4, "scaleFactor": 0.5, "frameIndex": 7,
                              "offset": 2.0, "byteOrdering": 3, "attributePath": "", "logicCode": 44})"));
}

TEST(AttributeConstant, GivesCopiesOfItsValueAndKnowsNothingElse) {
    CapturedLog log;
    AttributeConstant constant(json::parse(R"({"a": null})"));
    const auto ask = [&](bool edm) {
        return OutcomeOf([&](_Quality_t& quality, json& value) {
            return edm ? constant.GetEdmValue(nullptr, false, false, quality, value)
                       : constant.GetIotValue("urn", nullptr, true, true, quality, value);
        });
    };
    EXPECT_EQ(ask(false), R"(0 Good {"a":null})");
    EXPECT_EQ(ask(true), R"(0 Good {"a":null})");
    std::set<std::uint8_t> frames{4};
    std::string className = "before";
    EXPECT_EQ(Number(constant.ComputeAndGetFrameIndexes(frames)), 0);
    EXPECT_EQ(frames, std::set<std::uint8_t>{4});
    EXPECT_EQ(Number(constant.GetClassName(className)), 60);
    EXPECT_EQ(className, "before");
    EXPECT_EQ(constant.GetModbusMeasurementInformation().mScaleFactor, 1.0);
    EXPECT_FALSE(constant.HasEnumOutput());
    EXPECT_EQ(log.Joined(), R"(
7[DataModel::AttributeConstant][trace] [GetIotValue] value={"a":null}
7[DataModel::AttributeConstant][trace] [GetEdmValue] value={"a":null}
3[DataModel::AttributeConstant] [GetModbusMeasurementInformation] Should not be called, empty value returned)");
}

}  // namespace kzm::ModbusDeviceModel::Test::AttributeConverterTest
