#include "gateway/profile/TypeSpelling.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>

#include "DeviceProfile/LogicCodeTable.h"
#include "gateway/json/ProblemText.h"

namespace kzm::ModbusGateway {

namespace {

struct TypeRow {
    std::string_view type;
    std::string_view spellings;  // in small letters and digits, with blanks between
};

constexpr TypeRow TYPES[] = {
    {"boolean", "bool boolean bit bits coil flag"},
    {"uint16",
     "uint8 uint8t u8 ui8 int8u 8uint unsigned8 usint byte "
     "uint16 uint16t u16 ui16 us16 int16u 16uint 16bituint unsigned16 uint ushort word word16 unsigned ufixed16"},
    {"int16", "int16 int16t s16 i16 si16 sint16 int16s 16int 16bitint signed16 int short integer fixed16"},
    {"uint32", "uint32 uint32t u32 ui32 int32u 32uint 32bituint unsigned32 udint ulong dword ufixed32"},
    {"int32", "int32 int32t s32 i32 si32 sint32 int32s 32int 32bitint signed32 dint long longint fixed32"},
    {"uint64", "uint64 uint64t u64 ui64 int64u 64uint unsigned64 ulint lword qword biguint64 ulonglong"},
    {"int64", "int64 int64t s64 i64 si64 sint64 int64s 64int signed64 lint bigint64 longlong"},
    {"float32", "float32 float f32 32float real real32 single flt ieee754 float32ieee floatingpoint"},
    {"float64", "float64 double f64 64float lreal real64 float64ieee"},
    {"int8-to-float", "int8 int8l sint8 s8 i8 int8s"},
    {"text", "string str text ascii utf8 char chars"},
    {"text-swapped", "stringle strle textle asciile"},
    {"enum16", "enum"},
};

struct OrderRow {
    std::string_view suffix;
    std::string_view order = {};
    bool swapsBytes = false;
};

// The longest of several that end a text are first.
constexpr OrderRow ORDERS[] = {
    {"abcdefgh", "big"},
    {"ghefcdab", "little"},
    {"badcfehg", "", true},
    {"hgfedcba", "", true},
    {"wordswapped", "little"},
    {"wordswap", "little"},
    {"byteswapped", "", true},
    {"byteswap", "", true},
    {"swapped", "little"},
    {"swap", "little"},
    {"littleendian", "", true},
    {"bigendian", "big"},
    {"mswbe", "big"},
    {"lswbe", "little"},
    {"mswle", "", true},
    {"lswle", "", true},
    {"abcd", "big"},
    {"cdab", "little"},
    {"badc", "", true},
    {"dcba", "", true},
    {"msw", "big"},
    {"lsw", "little"},
    {"be", "big"},
    {"le", "", true},
    {"sw", "little"},
    {"sb", "", true},
    {"ab", "big"},
    {"ba", "", true},
    {"nan"},
    {"s", "little"},
};

std::string LettersAndDigits(std::string_view text) {
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80 && std::isalnum(byte) != 0) {
            result += static_cast<char>(std::tolower(byte));
        }
    }
    return result;
}

// Empty for an unknown spelling.
std::string_view TypeOf(const std::string& spelling) {
    for (const TypeRow& row : TYPES) {
        std::istringstream spellings{std::string(row.spellings)};
        for (std::string known; spellings >> known;) {
            if (known == spelling) {
                return row.type;
            }
        }
    }
    return {};
}

bool HasOneRegister(std::string_view type) {
    return std::ranges::any_of(ModbusDeviceModel::DeviceProfile::LogicCodeRows(),
                               [&](const auto& row) { return row.name == type && row.maxRegisters == 1; });
}

}  // namespace

std::optional<TypeSpelling> FindTypeSpelling(std::string_view text) {
    const std::string spelling = LettersAndDigits(text);
    if (const auto type = TypeOf(spelling); !type.empty()) {
        return TypeSpelling{type};
    }
    const auto row =
        std::ranges::find_if(ORDERS, [&](const OrderRow& known) { return spelling.ends_with(known.suffix); });
    if (row == std::end(ORDERS)) {
        return std::nullopt;
    }
    auto found = FindTypeSpelling(std::string_view(spelling).substr(0, spelling.size() - row->suffix.size()));
    if (found && found->order.empty() && !HasOneRegister(found->type)) {
        found->order = row->order;
    }
    if (found) {
        found->swapsBytes = found->swapsBytes || row->swapsBytes;
    }
    return found;
}

std::string DidYouMean(const TypeSpelling& spelling) {
    std::string text = "did you mean " + Quoted(spelling.type);
    if (!spelling.order.empty()) {
        text += " with \"order\": " + Quoted(spelling.order);
    }
    return text + (spelling.swapsBytes ? "? (Swapped bytes within a register need a computation.)" : "?");
}

}  // namespace kzm::ModbusGateway
