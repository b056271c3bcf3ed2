#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "TextTable.h"
#include "gateway/cache/DeviceFrames.h"
#include "gateway/cache/RegisterCache.h"
#include "gateway/diagnosis/Interpretation.h"

namespace kzm::ModbusTool {

// Registers side by side that were read without a profile, as tables and JSON lines.
class RegisterImage {
public:
    // How they are to be shown.
    struct Look {
        bool manual = false;                                     // with the numbers of manuals
        bool changes = false;                                    // with how often each has changed
        std::optional<ModbusGateway::Interpretation> type = {};  // nullopt: as all that they may be
        double scale = 1;                                        // of the type's values
        float offset = 0;
    };

    RegisterImage(ModbusDeviceModel::ModbusFunctionCode functionCode, std::uint16_t first, std::size_t count)
        : mFunctionCode(functionCode), mFirst(first), mRegisters(count) {}

    // Takes the registers that the cache holds of these frames.
    void Take(const ModbusGateway::RegisterCache& cache, const ModbusGateway::DeviceFrames& device);

    // With headings. `changed`: only what the last Take changed; empty if that is nothing.
    std::vector<Row> GetRows(const Look& look, bool changed) const;
    std::vector<nlohmann::json> GetJson(const Look& look, bool changed) const;

private:
    using Words = std::vector<std::uint16_t>;
    struct Register {
        std::optional<std::uint16_t> value;
        bool hasChanged = false;  // with the last Take
        std::size_t changes = 0;
    };
    // Registers that are shown together.
    struct Line {
        std::size_t offset;  // from the first
        Words words;
        bool hasChanged;
        std::size_t changes;
    };

    std::vector<Line> GetLines(const Look& look, bool changed) const;
    // Those that are known; fewer than `count` at the end, and before one that is not known.
    Words From(std::size_t offset, std::size_t count) const;
    Row RowOf(const Line& line, const Look& look) const;
    void AddAll(Row& row, std::size_t offset) const;
    void AddTyped(Row& row, const Line& line, const Look& look) const;
    nlohmann::json JsonOf(const Line& line, const Look& look) const;
    bool IsOfBits() const;

    ModbusDeviceModel::ModbusFunctionCode mFunctionCode;
    std::uint16_t mFirst;
    std::vector<Register> mRegisters;
};

}  // namespace kzm::ModbusTool
