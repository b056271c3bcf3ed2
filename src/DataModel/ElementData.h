#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "DeviceProfile/ByteOrderingEnum.h"
#include "DeviceProfile/EnumerationPairData.h"
#include "DeviceProfile/LogicCodeIdentifier.h"
#include "Export.h"

namespace kzm::ModbusDeviceModel::DeviceProfile {
struct LogicCodeRow;
}
namespace kzm::ModbusDeviceModel::ServiceImpl {
class IValueProcesser;
}

namespace kzm::ModbusDeviceModel::DataModel {

template <typename Watch>
struct Decoding;
struct LogicCodeDependency;
struct myData;

// One data element of a device: which registers hold it, and how they become a JSON value. Immutable after
// construction; one element decodes for many threads at once.
class KZM_MODBUS_EXPORT ElementData {
public:
    // Frame index of an element that is in no frame.
    static constexpr std::uint8_t INVALID_FRAME_INDEX = 255;

    // `bitmask`: one byte per raw byte, required. `validityStatus`: the raw bytes that mean "not available", "0x" and
    // two hexadecimal digits per byte; looked at only when `validityCheckEnabled`. `scaleFactor` and `offset`: the
    // value is offset + raw * scaleFactor, in its unit. Shared pointers are shared.
    ElementData(std::uint16_t registerAddress, std::uint8_t numberOfRegisters,
                std::shared_ptr<std::vector<std::uint8_t>> bitmask, double scaleFactor,
                std::shared_ptr<std::string> validityStatus, LogicCodeIdentifier logicCode, std::uint8_t frameIndex,
                std::string attributePath, float offset,
                std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> enumerationPairs,
                ByteOrderingEnum byteOrdering, bool validityCheckEnabled);
    virtual ~ElementData();

    // Decodes the registers in `buffer` (`length` bytes, high byte of a register first), which is swapped and masked in
    // place. `deviceBigEndian` orders the words of an element without an order of its own; `request` is not used.
    //
    // True: `value` is the decoded value and `invalid` false; or there is no value (the bytes match the "not available"
    // pattern or are not as many as it has, a number is out of its range, a label is not listed): `value` is null and
    // `invalid` true. False, with a log line: no bytes (`invalid` and `value` untouched), more than 255 bytes, or a
    // bitmask that is missing or shorter than the bytes (`invalid` true, `value` untouched). False, without a log line:
    // a logic code without conversion (`invalid` false, `value` untouched). Throws std::invalid_argument for a pattern
    // that is not hexadecimal.
    virtual bool Build(unsigned char* buffer, unsigned int length, bool deviceBigEndian, int request, bool& invalid,
                       nlohmann::json& value, ServiceImpl::IValueProcesser* valueProcesser);

    // First register, 0 to 65535, and number of registers on the device.
    virtual std::uint16_t GetDeviceRegister() const;
    virtual std::uint8_t GetNumberOfRegisters() const;
    // 0: only an extended element is read from a sub-device.
    virtual std::int16_t GetSlaveOffset() const;
    // Null: only an extended element depends on others.
    virtual std::shared_ptr<std::vector<LogicCodeDependency>> GetLogicCodeDependency() const;

    // What the constructor was given.
    std::uint8_t GetFrameIndex() const { return mFrameIndex; }
    std::string GetAttributePath() const { return mAttributePath; }
    LogicCodeIdentifier GetLogicCode() const { return mLogicCode; }
    // First byte of the bitmask, which must be there.
    const std::uint8_t* GetBitmask() const { return mBitmask->data(); }
    // What the constructor was given.
    std::shared_ptr<std::vector<std::uint8_t>> GetBitmaskVector() const { return mBitmask; }
    std::shared_ptr<std::string> GetValidityStatus() const { return mValidityStatus; }
    std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> GetEnumerationPairs() const {
        return mEnumerationPairs;
    }
    double GetScaleFactor() const { return mScaleFactor; }
    float GetOffset() const { return mOffset; }
    ByteOrderingEnum GetLocalByteOrdering() const { return mByteOrdering; }
    // True for every order but "least significant word first", also for the device's.
    bool IsLocalEndianessIsBigEndian() const { return mByteOrdering != ByteOrderingEnum::LITTLE_ENDIAN_WORDS; }
    // Whether the words of this element's own logic code are always swapped; the argument is not used.
    bool IsLogicCodeManageInLittleEndian(LogicCodeIdentifier logicCode) const;
    // Whether Build reverses the words, on a device whose own order is big-endian or not. An extended element's Build
    // never does.
    bool MustSwapWords(bool deviceBigEndian) const;
    // The element for diagnosis: "registerAddress", "nbRegisters", "scaleFactor", "frameIndex", "offset",
    // "byteOrdering", "logicCode" (numbers) and "attributePath" (text).
    nlohmann::json ToJson() const;

    // Reverses the order of the 16-bit words of 4, 6 or 8 bytes: AB CD becomes CD AB. Any other length, and null:
    // nothing.
    static void WordSwap(unsigned char* buffer, unsigned int length);
    // Exchanges the bytes of every word of 2, 4, 6 or 8 bytes: AB CD becomes BA DC. Any other length, and null:
    // nothing.
    static void ByteSwap(unsigned char* buffer, unsigned int length);
    // ByteSwap, then WordSwap: ABCD becomes DCBA.
    static void ByteAndWordSwap(unsigned char* buffer, unsigned int length);

    // Decoders of the register layouts of date and time (the seven- and eight-byte binary time of IEC 60870-5-4 and its
    // relatives). They read up to eight bytes in wire order and check no range. Month 0 and day 0 count as 1.
    static void DecodeDateTimeIEC870(std::tm& time, const char* bytes);
    static void DecodeDateTime3REGSV1ToIEC870(std::tm& time, const char* bytes);
    static void DecodeDateTimeMSPToIEC870(std::tm& time, const char* bytes);
    static void DecodeDateTimeCMToIEC870(std::tm& time, unsigned short& milliseconds, const char* bytes);
    // Seconds since 1970 and nanoseconds. A time past 2038 does not fit the seconds of a 32-bit time_t.
    static void DecodeDateTimeULPToIEC870(std::timespec& time, const char* bytes);

    // Whether a UTF-8 sequence (RFC 3629, without the test for overlong forms, surrogates and the upper end) starts at
    // `position`. `length`: bytes that its lead byte announces; 1 for a bad lead byte and for a position past the end,
    // which are false.
    static bool CheckUTF8Validity(std::string& text, unsigned int& position, unsigned int& length);
    // Replaces every byte that belongs to no valid sequence by U+FFFD.
    static void SanitiseUTF8Sequence(std::string& text);

protected:
    // Converts a gathered record by the logic code. False: the code has no conversion, nothing is touched. True: as
    // Build.
    bool ApplyLogicConversion(int request, myData& data, bool& invalid, nlohmann::json& value,
                              ServiceImpl::IValueProcesser* valueProcesser);

    // The label of the first pair that matches the record read as T. Null with `invalid` untouched when there are no
    // pairs; null with `invalid` set when none matches; an empty label sets `invalid` too.
    template <typename T>
    nlohmann::json GetEnumValue(const myData& data, bool& invalid);
    // As GetEnumValue; where there are no pairs and the logic code is that of an enumeration of numbers, the number
    // itself as text (a float in its shortest form; null with `invalid` set if it is not finite).
    template <typename T>
    nlohmann::json EncodeEnumValue(const myData& data, bool& invalid);

private:
    friend class ExtendedElementData;
    template <typename Watch>
    friend struct Decoding;

    std::uint16_t mRegisterAddress;
    std::uint8_t mNumberOfRegisters;
    ByteOrderingEnum mByteOrdering;
    bool mValidityCheckEnabled;
    std::string mAttributePath;
    double mScaleFactor;
    float mOffset;
    std::shared_ptr<std::vector<std::uint8_t>> mBitmask;
    std::shared_ptr<std::string> mValidityStatus;
    std::shared_ptr<std::vector<DeviceProfile::EnumerationPairData>> mEnumerationPairs;
    LogicCodeIdentifier mLogicCode;
    std::uint8_t mFrameIndex;
    bool mNeedsScaling;
    const DeviceProfile::LogicCodeRow* mRow;
};

}  // namespace kzm::ModbusDeviceModel::DataModel
