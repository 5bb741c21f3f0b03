#pragma once

#include <string_view>

namespace kvsig {

class DataSource;
class SourceMontage;

/// A definition without its settings: bars before it are skipped, and it ends at the next one.
[[nodiscard]] std::string_view derivationOf(const char* defn);

/// Whether the derivation itself is an average. IsAvgDefn() takes a "+" of the settings
/// ("1.6e+02 sec") for one too.
[[nodiscard]] bool isAverageDerivation(const char* defn);

/// Builds what a derivation definition describes and appends it to the montage, which has a reader:
/// a gap, a numeric derivation with its weighted average, an average, or a bipolar or referential
/// row. Null, and nothing was added, when the definition cannot be resolved.
DataSource* buildSource(SourceMontage& montage, const char* defn);

} // namespace kvsig
