#pragma once

#include "dictionary/DictionaryRow.h"

namespace kz::orba::VortaExtensionModbus::Device::Rows {

using enum StructureTemplate;

// Classes begin "$iot.switchgear.circuit_breaker.".
// clang-format off
inline constexpr DictionaryRow CIRCUIT_BREAKERS[] = {
    {"30",  "CircuitBreaker.AbrasionNeut",                        PLAIN_VALUE,       "value=SCBR1_AccAbrNeut"},
    {"31",  "CircuitBreaker.AbrasionPhsA",                        PLAIN_VALUE,       "value=SCBR1_AccAbrPhsA"},
    {"32",  "CircuitBreaker.AbrasionPhsB",                        PLAIN_VALUE,       "value=SCBR1_AccAbrPhsB"},
    {"33",  "CircuitBreaker.AbrasionPhsC",                        PLAIN_VALUE,       "value=SCBR1_AccAbrPhsC"},
    {"3f",  "CircuitBreaker.ElectricalTripCounter",               PLAIN_VALUE,       "value=XCBR1_CBElecTripCntRs"},
    {"40",  "CircuitBreaker.ElectricalTripIndicator",             TIMESTAMPED_VALUE, "value=XCBR1_CBElecTripInd;quality=XCBR1_CBElecTripInd_Qual"},
    {"48",  "CircuitBreaker.LoadedOperationCounter",              PLAIN_VALUE,       "value=SCBR1_OpCntLoad"},
    {"51",  "CircuitBreaker.OperationCounter",                    PLAIN_VALUE,       "value=SCBR1_OpCnt"},
    {"53",  "CircuitBreaker.OperationTripCounter",                PLAIN_VALUE,       "value=Trip_GLOG1_TripOpCnt"},
    {"59",  "CircuitBreaker.PositionInformation",                 TIMESTAMPED_VALUE, "value=XCBR1_Pos;quality=XCBR1_Pos_Qual"},
    {"5d",  "CircuitBreaker.ReadyToCloseIndicator",               TIMESTAMPED_VALUE, "value=XCBR1_CBClsCap"},
    {"5e",  "CircuitBreaker.RemainingServiceLifeRatio",           PLAIN_VALUE,       "value=SCBR1_OpCntResRat"},
    {"5f",  "CircuitBreaker.ServiceLifeLoadedWearRatio",          PLAIN_VALUE,       "value=SCBR1_OpCntLoadRat"},
    {"60",  "CircuitBreaker.ServiceLifeWearRatio",                PLAIN_VALUE,       "value=SCBR1_OpCntRat"},
    {"63",  "CircuitBreaker.SpringStatus",                        TIMESTAMPED_VALUE, "value=XCBR1_CBChaInd"},
    {"67",  "CircuitBreaker.TripCounter",                         PLAIN_VALUE,       "value=XCBR1_CBTripCntRs"},
    {"68",  "CircuitBreaker.TripIndicator",                       TIMESTAMPED_VALUE, "value=XCBR1_CBTripInd;quality=XCBR1_CBTripInd_Qual"},
    {"767", "CircuitBreaker.CurrentOperatingTimeRangeA",          UNIT_VALUE,        "value=SCBR1_ARange1OpTm", "s"},
    {"768", "CircuitBreaker.CurrentOperatingTimeRangeB",          UNIT_VALUE,        "value=SCBR1_ARange2OpTm", "s"},
    {"769", "CircuitBreaker.CurrentOperatingTimeRangeC",          UNIT_VALUE,        "value=SCBR1_ARange3OpTm", "s"},
    {"76a", "CircuitBreaker.CurrentOperatingTimeRangeD",          UNIT_VALUE,        "value=SCBR1_ARange4OpTm", "s"},
    {"76b", "CircuitBreaker.MotorTripIndicator",                  TIMESTAMPED_VALUE, "value=CMOT1_TripInd"},
    {"76c", "CircuitBreaker.OpenToCloseCounterThreshold",         STEPPED_VALUE,     "value=XCBR1_ClsPosCntStrVal"},
    {"76d", "CircuitBreaker.OperationCounterDurability",          PLAIN_VALUE,       "value=SCBR1_OpCntHLim"},
    {"76e", "CircuitBreaker.TotalCumulativeBreakingCurrent",      UNIT_VALUE,        "value=SCBR1_TtlCumA2",    "A²"},
    {"76f", "CircuitBreaker.WorstAbrasionPhs",                    PLAIN_VALUE,       "value=SCBR1_AccAbr_DT"},
    {"78a", "CircuitBreaker.OpenToCloseCounter",                  PLAIN_VALUE,       "value=XCBR1_CBClsPosCnt"},
    {"81a", "CircuitBreaker.ElectricalTripCounterNonResettable",  PLAIN_VALUE,       "value=XCBR1_CBElecTripCnt"},
    {"81b", "CircuitBreaker.TripCounterNonResettable",            PLAIN_VALUE,       "value=XCBR1_CBTripCnt"},
    {"894", "CircuitBreaker.CradleConnectedPositionIndicator",    TIMESTAMPED_VALUE, "value=XCBR1_RkdCntSt"},
    {"895", "CircuitBreaker.CradleDisconnectedPositionIndicator", TIMESTAMPED_VALUE, "value=XCBR1_RkdDiscntSt"},
    {"896", "CircuitBreaker.CradleTestPositionIndicator",         TIMESTAMPED_VALUE, "value=XCBR1_RkdTestSt"},
    {"897", "CircuitBreaker.DrawerConnectedPositionIndicator",    TIMESTAMPED_VALUE, "value=XCBR1_DrwCntSt"},
    {"898", "CircuitBreaker.DrawerDisconnectedPositionIndicator", TIMESTAMPED_VALUE, "value=XCBR1_DrwDiscntSt"},
    {"899", "CircuitBreaker.DrawerTestPositionIndicator",         TIMESTAMPED_VALUE, "value=XCBR1_DrwTestSt"},
    {"89a", "CircuitBreaker.ErmsIndicator",                       TIMESTAMPED_VALUE, "value=ERMS1_Ind"},
    {"89b", "CircuitBreaker.RelayIndicator",                      TIMESTAMPED_VALUE, "value=SCBR1_RelaySt"},
    {"89c", "CircuitBreaker.TripCircuitSupervisionIndicator",     TIMESTAMPED_VALUE, "value=XCBR1_TripSupervSt"},
    {"89d", "CircuitBreaker.TrippingChainFailureTripIndicator",   TIMESTAMPED_VALUE, "value=XCBR1_TripChainOp;quality=XCBR1_TripChainOp_Qual"},
    {"a06", "CircuitBreaker.BreakerHealthStatus",                 TIMESTAMPED_VALUE, "value=XCBR1_Health"},
    {"a08", "CircuitBreaker.InternalTripIndicator",               TIMESTAMPED_VALUE, "value=LPHD1_IntErr;quality=LPHD1_IntErr_Qual"},
    {"a09", "CircuitBreaker.TestPushButtonTripIndicator",         TIMESTAMPED_VALUE, "value=Pro_Test1_Op;quality=Pro_Test1_Op_Qual"},
};
// clang-format on
static_assert(AreInOrder(CIRCUIT_BREAKERS), "the keys must be in byte order, each once");
static_assert(std::size(CIRCUIT_BREAKERS) == 42, "a new row is counted here");

}  // namespace kz::orba::VortaExtensionModbus::Device::Rows
