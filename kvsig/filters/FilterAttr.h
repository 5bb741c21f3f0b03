#pragma once

#include "kvsig/filters/DisplayText.h"
#include "kvsig/util/Export.h"

namespace kvsig {

#pragma pack(push, 1)

/// One filter setting of a channel or a montage, as it travels between host and library: 25 bytes
/// without gaps, passed by value. A field cannot be bound to a reference; read it by value.
///
/// A low filter is shown by its time constant, 0.16 / cutoff seconds (0.16 stands for 1 / 2 pi).
///
/// Text buffers need room for filterTextSize bytes and are returned; a null buffer stays untouched.
/// Null texts count as empty. "(off)" is recognised in any case of letters.
struct KVSIG_API FilterAttr {
    bool use = false;    ///< the filter is on
    double cutoff = 0.0; ///< hertz
    double second = 0.0; ///< transition width, or what sets the width of a notch; hertz
    double third = 0.0;  ///< attenuation, dB

    /// "(off)" or the cutoff as FreqAsText() gives it.
    char* getCutFreqAsText(char* buf) const;
    /// "(off)" switches the filter off and keeps the cutoff; any other text switches it on, with
    /// the text's leading number as the cutoff (0 when there is none).
    void setCutFreqAsText(const char* text);
    /// "(off)" or the time constant as TimeConstantAsText() gives it.
    char* getTimeConstantAsText(char* buf) const;
    /// "(off)" switches the filter off and keeps the cutoff; any other text switches it on, with
    /// the text's leading number as the time constant in seconds (0, or no number, makes the cutoff
    /// infinite).
    void setTimeConstantAsText(const char* text);

    /// All four values are equal.
    friend bool operator==(const FilterAttr& a, const FilterAttr& b) {
        return a.use == b.use && a.cutoff == b.cutoff && a.second == b.second && a.third == b.third;
    }
};

#pragma pack(pop)

static_assert(sizeof(FilterAttr) == 25, "the record has no gaps");

} // namespace kvsig
