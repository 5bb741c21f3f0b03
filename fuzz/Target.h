#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kvsig::fuzz {

/// One way into the library that takes bytes from outside.
struct Target {
    std::string name;       ///< of letters, digits and '_': names its corpus folder
    std::string dictionary; ///< file of fuzz/dictionaries, without its ending
    std::function<void(std::string_view input)> run;
    std::vector<std::string> seeds; ///< inputs that are well made
};

inline void PrintTo(const Target& target, std::ostream* stream) { *stream << target.name; }

/// Every target: one for each readable format, then layouts, montages and texts.
[[nodiscard]] const std::vector<Target>& targets();
/// Null when there is none of that name.
[[nodiscard]] const Target* findTarget(std::string_view name);
/// The target of a readable format.
[[nodiscard]] std::string formatTargetName(int type);

/// The parts that targets() puts together.
[[nodiscard]] std::vector<Target> readerTargets();
[[nodiscard]] std::vector<Target> layoutTargets();
[[nodiscard]] std::vector<Target> attributeTargets();
[[nodiscard]] std::vector<Target> montageTargets();
[[nodiscard]] std::vector<Target> textTargets();

} // namespace kvsig::fuzz
