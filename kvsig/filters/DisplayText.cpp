#include "kvsig/filters/DisplayText.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

namespace kvsig {
namespace {

char* writeNumber(char* buf, double value, int digits, const char* unit) {
    copyText(buf, filterTextSize, generalText(value, digits) + unit);
    return buf;
}

} // namespace

char* FreqAsText(char* buf, double hz) { return writeNumber(buf, hz, 3, " Hz"); }

char* TimeConstantAsText(char* buf, double seconds) { return writeNumber(buf, seconds, 2, " sec"); }

char* UvPerMMAsText(char* buf, double value) { return writeNumber(buf, value, 4, " uV"); }

} // namespace kvsig
