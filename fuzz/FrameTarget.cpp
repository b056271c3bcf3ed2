// Fills frame lists, copies and moves them, and looks for their registers in a cache.
#include <algorithm>

#include "DeviceProfile/FrameData.h"
#include "fuzz/Input.h"
#include "gateway/cache/FrameAddresses.h"
#include "gateway/cache/RegisterCache.h"

namespace kzm::ModbusFuzz {

namespace {

using namespace ModbusDeviceModel;
using DeviceProfile::FrameData;
using DeviceProfile::FrameKind;
using kz::orba::StatusCode;
using ModbusGateway::RegisterCache;
using Addresses = std::vector<std::uint16_t>;

// Arrays of a caller, which outlive the frames.
const Addresses FOREIGN{9, 3, 3, 65535, 0, 7};

Addresses TakeAddresses(Input& input) {
    Addresses addresses;
    for (auto count = input.UpTo(120U); count > 0; --count) {
        addresses.push_back(input.ConsumeIntegral<std::uint16_t>());
    }
    return addresses;
}

FrameData TakeFrame(Input& input) {
    const auto function = static_cast<ModbusFunctionCode>(input.UpTo(17U));
    const auto length = input.UpTo<std::uint16_t>(2500);
    const auto first = input.ConsumeIntegral<std::uint16_t>();
    switch (input.UpTo(4)) {
        case 1:
            return {function, true, 1, length, first};
        case 2:
            return {function, true, 1, length, TakeAddresses(input)};
        case 3:
            return {function, true, 1, std::min<std::uint16_t>(length, 6), FOREIGN.data()};
        case 4:
            return {function, true, 1, length, first, 1, 2};
        default:
            return {function, true, 1};
    }
}

void Add(FrameData& frame, std::uint16_t first, std::uint16_t count) {
    const bool owned = frame.mAddress.mAddresses == frame.mAddressList.data();
    const Addresses before = owned ? frame.mAddressList : Addresses{};
    const StatusCode status = frame.AddAddressesToFrame(first, count);
    const Addresses& list = frame.mAddressList;
    Require(std::adjacent_find(list.begin(), list.end(), std::greater_equal<>()) == list.end(),
            "a list is sorted, each once");
    Require(frame.mLength == list.size() && frame.mAddress.mAddresses == list.data(),
            "length and address follow the list");
    Require(list.size() <= std::max(FrameData::MAX_LISTED_ADDRESSES, before.size()), "a list is not too long");
    const auto has = [&list](std::uint32_t address) { return std::binary_search(list.begin(), list.end(), address); };
    Require(std::all_of(before.begin(), before.end(), has), "no address is lost");
    Require(status == StatusCode::OK || list.size() >= FrameData::MAX_LISTED_ADDRESSES || first + count > 0xFFFF,
            "only a full list and the last register are refused");
    for (std::uint32_t address = first; status == StatusCode::OK && address < std::uint32_t{first} + count; ++address) {
        Require(has(address), "what was added is there");
    }
}

void Change(FrameData& frame, Input& input) {
    const auto first = input.ConsumeIntegral<std::uint16_t>();
    const auto count = input.ConsumeBool() ? input.UpTo<std::uint16_t>(10) : input.ConsumeIntegral<std::uint16_t>();
    if (frame.mKind == FrameKind::ADDRESS_LIST) {
        Add(frame, first, count);
    } else {
        Require(frame.AddAddressesToFrame(first, count) != StatusCode::OK, "a range takes no addresses");
    }
}

void CopyAndMove(FrameData& frame) {
    const Addresses before = ModbusGateway::AddressesOf(frame);
    FrameData copy(frame);
    FrameData moved(std::move(frame));
    Require(ModbusGateway::AddressesOf(frame).empty() && frame.mLength == 0, "what was moved from is empty");
    frame = copy;
    copy = std::move(moved);
    Require(ModbusGateway::AddressesOf(frame) == before && ModbusGateway::AddressesOf(copy) == before,
            "copies and moves have the same addresses");
    frame = *&frame;
}

void ReadFromCache(const FrameData& frame, Input& input) {
    const Addresses addresses = ModbusGateway::AddressesOf(frame);
    RegisterCache cache({frame});
    cache.Update(0, addresses, 1);  // each register holds its address
    const auto first = input.ConsumeBool() && !addresses.empty() ? addresses[input.UpTo(addresses.size() - 1)]
                                                                 : input.ConsumeIntegral<std::uint16_t>();
    const auto count = input.UpTo<std::uint8_t>(130);
    Bytes bytes(input.UpTo(260U));
    RegisterCache::Quality quality{};
    const auto size = cache.ReadFrame(0, first, count, bytes.data(), static_cast<std::uint32_t>(bytes.size()), quality);
    Require(size == 0 || size == 2U * count, "all registers are read, or none");
    for (std::uint32_t i = 0; i < size / 2; ++i) {
        Require(bytes[2 * i] * 256U + bytes[2 * i + 1] == first + i, "each register is found at its address");
    }
}

}  // namespace

}  // namespace kzm::ModbusFuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kzm::ModbusFuzz;
    Input input(data, size);
    FrameData frame = TakeFrame(input);
    for (auto changes = input.UpTo(8U); changes > 0; --changes) {
        Change(frame, input);
        if (input.ConsumeBool()) {
            CopyAndMove(frame);
        }
    }
    ReadFromCache(frame, input);
    return 0;
}
