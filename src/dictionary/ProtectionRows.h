#pragma once

#include "dictionary/DictionaryRow.h"

namespace kz::orba::VortaExtensionModbus::Device::Rows {

using enum StructureTemplate;

// Classes begin "$iot.protection.", then comes the function group.
// clang-format off
inline constexpr DictionaryRow PROTECTIONS[] = {
    {"78b", "ElPtoc.OperateStatus",                    TIMESTAMPED_VALUE, "value=EF_PTOC1_Op;quality=EF_PTOC1_Op_Qual",         "", "el_ptoc."},
    {"78c", "ElPtoc.OperateStatus2",                   TIMESTAMPED_VALUE, "value=EF_PTOC2_Op",                                  "", "el_ptoc."},
    {"78d", "ElPtoc.OperateStatus2SettingGroupA",      TIMESTAMPED_VALUE, "value=EF_PTOC2_Op_SG1",                              "", "el_ptoc."},
    {"78e", "ElPtoc.OperateStatus2SettingGroupB",      TIMESTAMPED_VALUE, "value=EF_PTOC2_Op_SG2",                              "", "el_ptoc."},
    {"78f", "ElPtoc.OperateStatus3",                   TIMESTAMPED_VALUE, "value=EF_PTOC3_Op",                                  "", "el_ptoc."},
    {"790", "ElPtoc.OperateStatus4",                   TIMESTAMPED_VALUE, "value=EF_PTOC4_Op",                                  "", "el_ptoc."},
    {"791", "ElPtoc.OperateStatusSettingGroupA",       TIMESTAMPED_VALUE, "value=EF_PTOC1_Op_SG1",                              "", "el_ptoc."},
    {"792", "ElPtoc.OperateStatusSettingGroupB",       TIMESTAMPED_VALUE, "value=EF_PTOC1_Op_SG2",                              "", "el_ptoc."},
    {"793", "ElPtov.OperateStatus",                    TIMESTAMPED_VALUE, "value=EF_PTOV1_Op",                                  "", "el_ptov."},
    {"794", "ElPtov.OperateStatus2",                   TIMESTAMPED_VALUE, "value=EF_PTOV2_Op",                                  "", "el_ptov."},
    {"795", "GfPtoc.OperateStatus",                    TIMESTAMPED_VALUE, "value=G_PTOC1_Op;quality=G_PTOC1_Op_Qual",           "", "gf_ptoc."},
    {"796", "LtPtoc.OperateStatus",                    TIMESTAMPED_VALUE, "value=LT_PTOC1_Op;quality=LT_PTOC1_Op_Qual",         "", "lt_ptoc."},
    {"797", "NegativeSequencePtov.OperateStatus",      TIMESTAMPED_VALUE, "value=SeqVNeg_PTOV1_Op",                             "", "neg_seq_ptov."},
    {"798", "Pdop.OperateStatus",                      TIMESTAMPED_VALUE, "value=TotW_PDOP1_Op",                                "", "pdop."},
    {"799", "Pioc.OperateStatus",                      TIMESTAMPED_VALUE, "value=PIOC1_Op;quality=PIOC1_Op_Qual",               "", "pioc."},
    {"79a", "Pioc.OperateStatus2",                     TIMESTAMPED_VALUE, "value=PIOC2_Op;quality=PIOC2_Op_Qual",               "", "pioc."},
    {"79b", "Protection.InsulationFaultLocating",      TIMESTAMPED_VALUE, "value=Insulation_FaultLocating"},
    {"79c", "Ptoc.OperateStatus",                      TIMESTAMPED_VALUE, "value=PTOC1_Op",                                     "", "ptoc."},
    {"79d", "Ptoc.OperateStatus2",                     TIMESTAMPED_VALUE, "value=PTOC2_Op",                                     "", "ptoc."},
    {"79e", "Ptoc.OperateStatus2SettingGroupA",        TIMESTAMPED_VALUE, "value=PTOC2_Op_SG1",                                 "", "ptoc."},
    {"79f", "Ptoc.OperateStatus2SettingGroupB",        TIMESTAMPED_VALUE, "value=PTOC2_Op_SG2",                                 "", "ptoc."},
    {"7a0", "Ptoc.OperateStatus3",                     TIMESTAMPED_VALUE, "value=PTOC3_Op",                                     "", "ptoc."},
    {"7a1", "Ptoc.OperateStatus4",                     TIMESTAMPED_VALUE, "value=PTOC4_Op",                                     "", "ptoc."},
    {"7a2", "Ptoc.OperateStatusSettingGroupA",         TIMESTAMPED_VALUE, "value=PTOC1_Op_SG1",                                 "", "ptoc."},
    {"7a3", "Ptoc.OperateStatusSettingGroupB",         TIMESTAMPED_VALUE, "value=PTOC1_Op_SG2",                                 "", "ptoc."},
    {"7a4", "Ptof.OperateStatus",                      TIMESTAMPED_VALUE, "value=PTOF1_Op",                                     "", "ptof."},
    {"7a5", "Ptof.OperateStatus2",                     TIMESTAMPED_VALUE, "value=PTOF2_Op",                                     "", "ptof."},
    {"7a6", "Ptov.OperateStatus",                      TIMESTAMPED_VALUE, "value=PTOV1_Op;quality=PTOV1_Op_Qual",               "", "ptov."},
    {"7a7", "Ptov.OperateStatus2",                     TIMESTAMPED_VALUE, "value=PTOV2_Op",                                     "", "ptov."},
    {"7a8", "Pttr.OperateStatus",                      TIMESTAMPED_VALUE, "value=PTTR1_Op",                                     "", "pttr."},
    {"7a9", "Pttr.OperateStatus2",                     TIMESTAMPED_VALUE, "value=PTTR2_Op",                                     "", "pttr."},
    {"7aa", "Ptuf.OperateStatus",                      TIMESTAMPED_VALUE, "value=PTUF1_Op",                                     "", "ptuf."},
    {"7ab", "Ptuf.OperateStatus2",                     TIMESTAMPED_VALUE, "value=PTUF2_Op",                                     "", "ptuf."},
    {"7ac", "Ptuf.OperateStatus3",                     TIMESTAMPED_VALUE, "value=PTUF3_Op",                                     "", "ptuf."},
    {"7ad", "Ptuf.OperateStatus4",                     TIMESTAMPED_VALUE, "value=PTUF4_Op",                                     "", "ptuf."},
    {"7ae", "Ptuv.OperateStatus",                      TIMESTAMPED_VALUE, "value=PTUV1_Op",                                     "", "ptuv."},
    {"7af", "Ptuv.OperateStatus2",                     TIMESTAMPED_VALUE, "value=PTUV2_Op",                                     "", "ptuv."},
    {"7b0", "StPtoc.OperateStatus",                    TIMESTAMPED_VALUE, "value=ST_PTOC1_Op;quality=ST_PTOC1_Op_Qual",         "", "st_ptoc."},
    {"7b1", "UnbalancePtoc.OperateStatus",             TIMESTAMPED_VALUE, "value=Unb_PTOC1_Op",                                 "", "unbalance_ptoc."},
    {"7b2", "UnbalancePtoc.OperateStatus2",            TIMESTAMPED_VALUE, "value=Unb_PTOC2_Op",                                 "", "unbalance_ptoc."},
    {"8b7", "Protection.SurgeArresterFaultStatus",     TIMESTAMPED_VALUE, "value=ZSAR1_SurgeFailure"},
    {"8bc", "Protection.AdvanceProtectionFaultStatus", TIMESTAMPED_VALUE, "value=GGIO1_AdvProt"},
    {"8bd", "Protection.InsulationFaultStatus",        TIMESTAMPED_VALUE, "value=Insulation_Fault"},
    {"8bf", "Protection.TripThermalFaultStatus",       TIMESTAMPED_VALUE, "value=GGIO1_ThmFault"},
    {"a05", "DinPioc.OperateStatus",                   TIMESTAMPED_VALUE, "value=DIN_PIOC1_Op;quality=DIN_PIOC1_Op_Qual",       "", "din_pioc."},
    {"a07", "SellimPioc.OperateStatus",                TIMESTAMPED_VALUE, "value=SELLIM_PIOC1_Op;quality=SELLIM_PIOC1_Op_Qual", "", "sellim_pioc."},
};
// clang-format on
static_assert(AreInOrder(PROTECTIONS), "the keys must be in byte order, each once");
static_assert(std::size(PROTECTIONS) == 46, "a new row is counted here");

}  // namespace kz::orba::VortaExtensionModbus::Device::Rows
