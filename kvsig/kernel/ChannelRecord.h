#pragma once

#include <cstdint>

namespace kvsig {

/// What the kernel knows of one channel. Texts are terminated 8-bit bytes as the file gives them.
struct ChannelRecord {
    char grid1[16] = "";      ///< electrode at input 1
    char grid2[16] = "";      ///< electrode at input 2, the recording reference
    char name[32] = "";       ///< "Ch<n>" by default, n from 1
    double calibration = 1.0; ///< physical units per raw count
    double dcOffset = 0.0;    ///< physical units
    std::int16_t type = 1;    ///< 1: microvolts; 100: another unit, mapped linearly
    std::int16_t subType = 0;
    char units[16] = "uV";
    double physioHigh = 1.0;     ///< physical value of digitalHigh
    double physioLow = -1.0;     ///< physical value of digitalLow
    double digitalHigh = 2048.0; ///< handed out truncated to 32 bits
    double digitalLow = -2048.0;
    bool zeroChannel = false; ///< carried for the host; reading does not look at it
};

} // namespace kvsig
