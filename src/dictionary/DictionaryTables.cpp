#include "dictionary/AlarmRows.h"
#include "dictionary/CircuitBreakerRows.h"
#include "dictionary/DeviceElementLookUp.h"
#include "dictionary/DictionaryPool.h"
#include "dictionary/MeasurementRows.h"
#include "dictionary/ProtectionRows.h"

// The tables in memory, made of their rows by the compiler.
namespace kz::orba::VortaExtensionModbus::Device {

namespace {

static_assert(KeysAscend(Rows::ALARMS) && KeysAscend(Rows::MEASUREMENTS) && KeysAscend(Rows::PROTECTIONS) &&
                  KeysAscend(Rows::CIRCUIT_BREAKERS),
              "the keys of a table must be in byte order, each once");
static_assert(std::size(Rows::ALARMS) == 124 && std::size(Rows::MEASUREMENTS) == 928 &&
              std::size(Rows::PROTECTIONS) == 46 && std::size(Rows::CIRCUIT_BREAKERS) == 42);

constexpr auto ALARM_POOL = Pack<Rows::ALARMS>("$iot.alm.");
constexpr auto MEASUREMENT_POOL = Pack<Rows::MEASUREMENTS>("$iot.measurement.");
constexpr auto PROTECTION_POOL = Pack<Rows::PROTECTIONS>("$iot.protection.");
constexpr auto CIRCUIT_BREAKER_POOL = Pack<Rows::CIRCUIT_BREAKERS>("$iot.switchgear.circuit_breaker.");

template <typename Pool>
constexpr DictionaryTable TableOf(const Pool& pool) {
    return {pool.rows.data(), pool.rows.size(), pool.text.data()};
}

}  // namespace

constinit const DictionaryTable DeviceElementLookUp::mIotAlmFunctionElement = TableOf(ALARM_POOL);
constinit const DictionaryTable DeviceElementLookUp::mIotMeasurementFunctionElement = TableOf(MEASUREMENT_POOL);
constinit const DictionaryTable DeviceElementLookUp::mIotProtectionFunctionElement = TableOf(PROTECTION_POOL);
constinit const DictionaryTable DeviceElementLookUp::mIotSwitchgearCircuitBreakerFunctionElement =
    TableOf(CIRCUIT_BREAKER_POOL);

}  // namespace kz::orba::VortaExtensionModbus::Device
