#pragma once

namespace kvsig {

class IDataReader;

/// Adds samples `first`..`last` (inclusive) of a channel times `scale` to `buf`, which holds as
/// many floats. Returns how many the reader delivered; 0, and `buf` is as it was, without memory.
///
/// A recording of one file adds in double precision and rounds once. Other readers need not add to
/// what the caller holds (of a pair the slower one adds to its own samples, which are those of the
/// channel that was read last), so their samples are fetched and added here.
int addChannel(IDataReader& reader, int channel, long first, long last, float* buf, double scale);

} // namespace kvsig
