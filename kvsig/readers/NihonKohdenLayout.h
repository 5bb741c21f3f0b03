#pragma once

#include "kvsig/readers/CalendarTime.h"
#include "kvsig/readers/HeaderFields.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Where things stand in the files of a Nihon Kohden recording (EEG-1100 / 2100 family).
namespace kvsig::nk {

/// All files of a recording begin with it.
inline constexpr TextField signature{"device signature", 0, 16};
inline constexpr TextField secondSignature{"second device signature", 0x81, 16};

/// .EEG: a table of control blocks, each a table of waveform blocks; .LOG: a table of log blocks.
inline constexpr NumberField<std::uint8_t> blockCount{"number of blocks", 0x91};
inline constexpr NumberField<std::uint32_t> blockAddress{"block address", 0x92};
inline constexpr std::int64_t headBytes = 0x92;
inline constexpr std::int64_t addressStep = 20; ///< an address and 16 bytes of text
inline constexpr std::int64_t mostTableBytes = 255 * addressStep;

/// .EEG
namespace eeg {
inline constexpr TextField patientPage{"name of the patient page", 0x20, 16};
inline constexpr TextField start{"start", 0x40, 14}; ///< YYYYMMDDhhmmss
inline constexpr TextField patientName{"patient name", 0x4F, 32};
inline constexpr std::int64_t usualBlock = 0x17FE; ///< the first waveform block is here
// Inside a control block.
inline constexpr NumberField<std::uint8_t> waveCount{"number of waveform blocks", 17};
inline constexpr NumberField<std::uint32_t> waveAddress{"waveform block address", 18};
// Inside a waveform block.
inline constexpr NumberField<std::uint8_t> mark{"mark of a waveform block", 0};
inline constexpr std::int64_t timeOffset = 0x14; ///< BCD year, month, day, hour, minute, second
inline constexpr NumberField<std::uint16_t> rate{"sampling rate", 0x1A}; ///< with flags above
inline constexpr std::uint16_t rateMask = 0x3FFF;
inline constexpr NumberField<std::uint32_t> tenths{"tenths of a second", 0x1C};
inline constexpr NumberField<std::uint8_t> channelCount{"number of channels", 0x26};
inline constexpr NumberField<std::uint8_t> code{"channel code", 0x27};
inline constexpr std::int64_t codeStep = 10;
inline constexpr std::int64_t waveHeadBytes = 0x27;
} // namespace eeg

/// .PNT
namespace pnt {
inline constexpr TextField samples{"name of the .EEG", 0x10, 16};
inline constexpr TextField log{"name of the .LOG", 0x20, 16};
inline constexpr TextField id{"patient ID", 0x604, 12};
inline constexpr TextField number{"EEG number", 0x61C, 10};
inline constexpr TextField name{"name", 0x62E, 22};
inline constexpr TextField sex{"sex", 0x64A, 8};
inline constexpr TextField birth{"birth", 0x660, 10}; ///< YYYY/MM/DD
inline constexpr TextField physician{"physician", 0x6AA, 20};
inline constexpr TextField examDate{"date of the exam", 0xB26, 10}; ///< YYYY/MM/DD
inline constexpr std::int64_t leastBytes = 0x6AA;                   ///< what is behind may be cut
inline constexpr std::int64_t readBytes = 0xB26 + 10;
} // namespace pnt

/// .LOG, inside a log block. Blocks with the rest of long texts and with fractions of a second
/// follow in the table from `subBlocks` on.
namespace log {
inline constexpr int mostBlocks = 22;
inline constexpr int subBlocks = 22;
inline constexpr NumberField<std::uint8_t> entryCount{"number of entries", 0x12};
inline constexpr std::int64_t entries = 0x14;
inline constexpr std::int64_t entryBytes = 45;
inline constexpr TextField text{"text", 0, 20};
inline constexpr TextField elapsed{"elapsed time", 20, 6};  ///< hhmmss
inline constexpr TextField clock{"clock time", 26, 14};     ///< (yymmddhhmmss)
inline constexpr TextField microseconds{"fraction", 24, 6}; ///< in a sub block
} // namespace log

/// What the years of two digits mean.
[[nodiscard]] constexpr int fullYear(int twoDigits) {
    return twoDigits + (twoDigits >= 80 ? 1900 : 2000);
}

/// The number that `count` digits from `position` on make; -1 when they are not all digits.
[[nodiscard]] int digitsAt(std::string_view text, std::size_t position, std::size_t count);

/// "YYYY/MM/DD"; without a date when it is none.
[[nodiscard]] CalendarTime dateOf(std::string_view text);

/// What the first bytes of a file say of the device.
enum class Device {
    none,           ///< no file of this family
    known,          ///< a device and a version that are known to be alike
    unknownVersion, ///< one of the devices, another version
    extended        ///< EEG-1200A, which has another layout
};
[[nodiscard]] Device deviceOf(std::string_view text);

} // namespace kvsig::nk
