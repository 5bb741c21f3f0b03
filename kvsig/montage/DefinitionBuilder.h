#pragma once

namespace kvsig {

class DataSource;
class SourceMontage;

/// Builds what a derivation definition describes and appends it to the montage, which has a reader:
/// a gap, a numeric derivation with its weighted average, an average, or a bipolar or referential
/// row. Null, and nothing was added, when the definition cannot be resolved.
DataSource* buildSource(SourceMontage& montage, const char* defn);

} // namespace kvsig
