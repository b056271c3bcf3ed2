#pragma once

namespace kzm::ModbusDeviceModel::DataModel {

// Labels of power factors: the quadrant of the power plane (IEEE convention) and the nature of the load.
inline constexpr const char* QUAD_I = "QuadrantI";
inline constexpr const char* QUAD_II = "QuadrantII";
inline constexpr const char* QUAD_III = "QuadrantIII";
inline constexpr const char* QUAD_IV = "QuadrantIV";
inline constexpr const char* LEAD = "Leading";
inline constexpr const char* LAG = "Lagging";
inline constexpr const char* CAPACITIVE = "Capacitive";
inline constexpr const char* INDUCTIVE = "Inductive";
inline constexpr const char* UNITY = "Unity";

}  // namespace kzm::ModbusDeviceModel::DataModel
