#include "Mutation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <random>
#include <string_view>
#include <vector>

namespace kvsig::mutants {
namespace {

using Random = std::mt19937_64;

struct Field {
    std::size_t offset;
    std::size_t width;
};

constexpr std::array<std::size_t, 10> fixedWidths{8, 80, 80, 8, 8, 8, 44, 8, 8, 4};
constexpr std::array<std::size_t, 10> signalWidths{16, 80, 8, 8, 8, 8, 8, 80, 8, 32};
constexpr std::size_t fixedBytes = 256;

constexpr std::array<std::string_view, 26> extremes{"",          "0",
                                                    "-1",        "1",
                                                    "2",         "3",
                                                    "9999",      "-999",
                                                    "1e3",       "1e308",
                                                    "-1e308",    "1e-300",
                                                    "nan",       "inf",
                                                    "99999999",  "-32768",
                                                    "32767",     "8388607",
                                                    "0.000001",  "33554432",
                                                    "536870912", "+0",
                                                    "EDF+C",     "EDF+D",
                                                    "BDF+C",     "\xff\xff\xff\xff"};

std::size_t pick(Random& random, std::size_t count) { return random() % count; }

std::size_t numberAt(std::string_view bytes, std::size_t offset, std::size_t width) {
    std::size_t number = 0;
    if (offset + width <= bytes.size()) {
        const std::string_view text = bytes.substr(offset, width);
        std::from_chars(text.data(), text.data() + text.size(), number);
    }
    return number;
}

std::size_t signalsOf(std::string_view bytes) { return numberAt(bytes, fixedBytes - 4, 4); }

bool hasFieldTable(std::string_view bytes) {
    return bytes.starts_with("0   ") || bytes.starts_with("\xff"
                                                          "BIOSEMI");
}

std::vector<Field> fieldsOf(std::string_view bytes) {
    std::vector<Field> fields;
    std::size_t offset = 0;
    for (const std::size_t width : fixedWidths) {
        fields.push_back({offset, width});
        offset += width;
    }
    const std::size_t signals = signalsOf(bytes);
    for (const std::size_t width : signalWidths)
        for (std::size_t i = 0; i < signals && offset + width <= bytes.size(); ++i) {
            fields.push_back({offset, width});
            offset += width;
        }
    return fields;
}

std::size_t headerBytes(std::string_view bytes) {
    const std::size_t all = hasFieldTable(bytes) ? fixedBytes * (signalsOf(bytes) + 1) : 1024;
    return std::max<std::size_t>(std::min(all, bytes.size()), 1);
}

std::string atByte(std::size_t offset) { return " at byte " + std::to_string(offset); }

// A number of 1 to 8 bytes in either order at a place that is a multiple of its width.
std::string setNumber(std::string& bytes, Random& random) {
    constexpr std::array<std::uint64_t, 8> numbers{
        0, 1, 2, 255, ~std::uint64_t{0}, ~std::uint64_t{0} >> 1, std::uint64_t{1} << 63, 65536};
    const std::size_t width = std::size_t{1} << pick(random, 4);
    const std::size_t offset = pick(random, headerBytes(bytes)) / width * width;
    const bool isBigEndian = pick(random, 2) == 0;
    std::uint64_t number = numbers[pick(random, numbers.size())];
    const std::string what = std::to_string(number);
    if (number > 65536) // those that end or begin the range of the width
        number >>= 64 - 8 * width;
    for (std::size_t i = 0; i < width; ++i, number >>= 8) {
        const std::size_t at = offset + (isBigEndian ? width - 1 - i : i);
        if (at < bytes.size())
            bytes[at] = static_cast<char>(number & 0xFF);
    }
    return std::to_string(width) + " bytes" + atByte(offset) + " set to " + what;
}

std::string setText(std::string& bytes, Field field, Random& random) {
    const std::string_view value = extremes[pick(random, extremes.size())];
    for (std::size_t i = 0; i < field.width && field.offset + i < bytes.size(); ++i)
        bytes[field.offset + i] = i < value.size() ? value[i] : ' ';
    return "field" + atByte(field.offset) + " set to \"" + std::string(value) + "\"";
}

std::string setField(std::string& bytes, Random& random) {
    const std::size_t anywhere = pick(random, headerBytes(bytes));
    if (hasFieldTable(bytes)) {
        const std::vector<Field> fields = fieldsOf(bytes);
        return setText(bytes, fields[pick(random, fields.size())], random);
    }
    return pick(random, 4) == 0 ? setText(bytes, {anywhere, 8}, random) : setNumber(bytes, random);
}

std::string cut(std::string& bytes, Random& random) {
    const bool inHeader = pick(random, 2) == 0;
    bytes.resize(pick(random, inHeader ? headerBytes(bytes) : bytes.size() + 1));
    return "cut" + atByte(bytes.size());
}

std::string flipBits(std::string& bytes, Random& random) {
    const std::size_t flips = 1 + pick(random, 8);
    std::string what = "bits flipped";
    for (std::size_t i = 0; i < flips && !bytes.empty(); ++i) {
        const bool inHeader = pick(random, 4) != 0;
        const std::size_t at = pick(random, inHeader ? headerBytes(bytes) : bytes.size());
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << pick(random, 8)));
        what += atByte(at);
    }
    return what;
}

} // namespace

std::string shortened(const std::string& bytes) {
    constexpr std::size_t enough = std::size_t{64} << 10;
    constexpr Field recordCount{236, 8};
    if (bytes.size() <= enough || !hasFieldTable(bytes))
        return bytes.substr(0, enough);
    const std::size_t signals = signalsOf(bytes);
    const std::size_t header = fixedBytes * (signals + 1);
    std::size_t samples = 0;
    for (std::size_t i = 0; i < signals; ++i)
        samples += numberAt(bytes, fixedBytes + 216 * signals + 8 * i, 8);
    const std::size_t record = samples * (bytes.front() == '0' ? 2 : 3);
    if (record == 0 || header + record > bytes.size())
        return bytes.substr(0, enough);
    const std::size_t records = (bytes.size() - header) / record;
    const std::size_t kept = std::min(
        records, enough > header ? std::max<std::size_t>((enough - header) / record, 1) : 1);
    std::string start = bytes.substr(0, header + kept * record);
    if (numberAt(bytes, recordCount.offset, recordCount.width) == records) {
        std::string count = std::to_string(kept);
        count.resize(recordCount.width, ' ');
        start.replace(recordCount.offset, recordCount.width, count);
    }
    return start;
}

std::string mutantOf(const Original& original, std::uint64_t number, std::string* what) {
    Random random(number * 0x9E3779B97F4A7C15U + original.bytes.size());
    std::string bytes = original.bytes;
    std::string done;
    switch (pick(random, 4)) {
    case 0:
        done = cut(bytes, random);
        break;
    case 1:
        done = flipBits(bytes, random);
        break;
    default:
        done = setField(bytes, random);
        // Two fields may be needed to contradict each other.
        if (pick(random, 3) == 0)
            done += ", " + setField(bytes, random);
    }
    if (what)
        *what = done;
    return bytes;
}

} // namespace kvsig::mutants
