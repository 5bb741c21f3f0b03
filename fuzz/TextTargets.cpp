#include "Check.h"
#include "Target.h"
#include "kvsig/filters/FIRLowPass.h"
#include "kvsig/filters/FilterAttr.h"
#include "kvsig/filters/IIRHighPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/filters/IIRNotch.h"
#include "kvsig/kernel/PathInfo.h"
#include "kvsig/montage/FilterDesign.h"
#include "kvsig/montage/SourceSettings.h"
#include "kvsig/util/FilePattern.h"
#include "kvsig/util/NeighbourFile.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/PathText.h"
#include "kvsig/util/StripBlanks.h"
#include "kvsig/util/Text.h"
#include "kvsig/util/TimeText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

// Short texts of hosts and files, and the values that they give.
namespace kvsig::fuzz {
namespace {

void scanSettingsText(std::string_view input) {
    const std::string text(input);
    SourceSettings settings;
    PolyScale scale;
    if (!scanSettings(text.c_str(), settings, scale))
        return;
    const std::string written = formatSettings(settings, scale);
    SourceSettings again;
    PolyScale scaleAgain;
    check(scanSettings(written.c_str(), again, scaleAgain), "settings that are written are read");
    // The filter texts lose digits; once lost, nothing more is.
    const std::string twice = formatSettings(again, scaleAgain);
    SourceSettings third;
    check(scanSettings(twice.c_str(), third, scaleAgain) && third.intValue == settings.intValue &&
              third.displayValue == settings.displayValue,
          "whole numbers of settings survive");
}

void designFromText(std::string_view input) {
    const std::string first(input.substr(0, input.find('\n')));
    const std::string second(input.substr(std::min(first.size() + 1, input.size())));
    FilterAttr attr;
    attr.setCutFreqAsText(first.c_str());
    FilterAttr constant;
    constant.setTimeConstantAsText(second.c_str());
    std::array<char, filterTextSize> text{};
    for (const FilterAttr& each : {attr, constant}) {
        static_cast<void>(each.getCutFreqAsText(text.data()));
        static_cast<void>(each.getTimeConstantAsText(text.data()));
        static_cast<void>(UvPerMMAsText(text.data(), each.cutoff));
    }
    attr.second = leadingDouble(second);
    constexpr double rate = 256.0;
    if (!(attr.second > 0))
        attr.second = notchWidthFrequency(attr.cutoff, usualNotchHalfWidth, rate);
    attr.third = leadingDouble(second.substr(second.find('\n') + 1));
    FIRLowPass fir;
    IIRLowPass low;
    IIRHighPass high;
    IIRNotch notch;
    for (Filter* filter : {static_cast<Filter*>(&fir), static_cast<Filter*>(&low),
                           static_cast<Filter*>(&high), static_cast<Filter*>(&notch)}) {
        static_cast<void>(designFilter(*filter, attr, rate));
        std::array<float, 300> block{};
        block[7] = 1.0F;
        static_cast<void>(filter->apply(block.data(), 300));
        filter->iterSetPosition(100, block.data(), 100);
        static_cast<void>(filter->iterApply(block.data(), 200));
        check(filter->nPrePts() >= 0 && filter->nPstPts() >= 0, "margins are counts");
    }
}

void readTimes(std::string_view input) {
    const std::string text(input);
    const double seconds = TimeToReal(text.c_str());
    char clock[realToTimeSize];
    for (const int form : {0, 1, 2, 3, 4, 5, 6, 7}) {
        RealToTime(seconds, clock, (form & 1) != 0, (form & 2) != 0, (form & 4) != 0);
        check(std::string_view(clock).size() < realToTimeSize, "a clock text fits");
        static_cast<void>(TimeToReal(clock));
    }
    // A sign in front of a clock text belongs to its first field alone: "-00:30" is half a minute.
    if (seconds >= 0 && seconds < 1e9) {
        RealToTime(seconds, clock, true, true, false);
        check(std::abs(TimeToReal(clock) - seconds) < 0.0101, "a clock text reads back");
    }
}

void handlePaths(std::string_view input) {
    const std::string first(input.substr(0, input.find('\n')));
    const std::string second(input.substr(std::min(first.size() + 1, input.size())));
    for (auto change : {KrnlChangeExt, KrnlChangeFile}) {
        std::array<char, pathTextSize> path{};
        copyText(path.data(), path.size(), first);
        static_cast<void>(change(path.data(), second.c_str()));
        check(std::string_view(path.data()).size() < pathTextSize, "a path fits its buffer");
    }
    std::string blanks = first;
    static_cast<void>(StripBlanks(blanks.data()));
    check(std::string(blanks.c_str()).find_last_not_of(' ') + 1 == viewOf(blanks.c_str()).size(),
          "no blanks are left at the end");
    static_cast<void>(fitsFilePattern(first, second));
    check(baseName(first).find_first_of("/\\") == std::string_view::npos,
          "a base name holds no separator");
    for (const PathInfo& info : splitPaths(first.c_str()))
        check(info.path[0] != '\0', "a list of paths holds no empty one");
}

void readNumbers(std::string_view input) {
    const double value = leadingDouble(input);
    check(value == value, "a number text is never a NaN");
    if (std::isfinite(value))
        check(leadingDouble(shortestText(value)) == value, "the shortest text reads back");
    static_cast<void>(leadingInteger(input));
    static_cast<void>(dottedTriple(input));
    for (const int digits : {0, 2, 17}) {
        static_cast<void>(fixedText(value, digits));
        static_cast<void>(generalText(value, digits));
    }
}

} // namespace

std::vector<Target> textTargets() {
    return {{"settings",
             "settings",
             scanSettingsText,
             {"10,1,1,3,0.16 sec,70 Hz,1,0,-5.5,5.5", "0,0,0,0,(off),(off)"}},
            {"filters", "settings", designFromText, {"70 Hz\n0.16 sec\n60", "(off)\n(off)"}},
            {"times", "settings", readTimes, {"1:02:03:04.5", "90.25", "-0:30"}},
            {"paths", "settings", handlePaths, {"/a/b.c/d.edf\n.bdf", "C:\\x\\y.w18\n*.w18;d*."}},
            {"numbers", "settings", readNumbers, {" +1.5e-3x", "04.07.89", "-32768"}}};
}

} // namespace kvsig::fuzz
