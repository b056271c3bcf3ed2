#include <ostream>

#include "dictionary/DeviceElementLookUp.h"
#include "dictionary/DictionaryPool.h"
#include "dictionary/DynamicDeviceClasses.h"

// The dictionary in memory, and what reads it there.
namespace kz::orba::VortaExtensionModbus::Device {

namespace {

constexpr DictionaryPool POOL;

// The parts of the pool that the library keeps.
constexpr auto TEXT = POOL.GetTexts().Copy<POOL.GetTexts().Size()>();
constexpr auto CLASSES = POOL.GetClasses();
constexpr auto SOURCES = POOL.GetSources();
constexpr auto ROWS = POOL.GetRows();

constexpr DictionaryTable TableOf(std::string_view name) {
    return POOL.GetTable(name, ROWS.data());
}

}  // namespace

std::string_view DictionaryText::View() const {
    return {TEXT.data() + mBegin, mSize};
}

std::ostream& operator<<(std::ostream& stream, DictionaryText text) {
    return stream << text.View();
}

const AttributeSource* AttributeSources::data() const {
    return SOURCES.data() + mBegin;
}

const DictionaryText* DynamicDeviceClasses::data() const {
    return CLASSES.data();
}

std::size_t DynamicDeviceClasses::size() const {
    return ClassNames::DYNAMIC_COUNT;
}

constinit const DictionaryTable DeviceElementLookUp::mIotAlmFunctionElement = TableOf("alarm");
constinit const DictionaryTable DeviceElementLookUp::mIotMeasurementFunctionElement = TableOf("measurement");
constinit const DictionaryTable DeviceElementLookUp::mIotProtectionFunctionElement = TableOf("protection");
constinit const DictionaryTable DeviceElementLookUp::mIotSwitchgearCircuitBreakerFunctionElement =
    TableOf("circuit-breaker");

}  // namespace kz::orba::VortaExtensionModbus::Device
