#pragma once

#include "Question.h"
#include "Workload.h"

namespace kvsig::bench {

/// Open a recording and read its header.
[[nodiscard]] Question openQuestion(const Workload& workload);
/// All channels through the whole file as floats, in windows of 10 s.
[[nodiscard]] Question wholeFileQuestion(const Workload& workload);
/// All channels of windows of 10 s, here and there in the file.
[[nodiscard]] Question randomWindowsQuestion(const Workload& workload, int windows);
/// One channel through the file, in windows of 10 s.
[[nodiscard]] Question oneChannelQuestion(const Workload& workload);
/// The first hour in pages of 10 s: 18 bipolar rows with three filters, row by row, and all rows in
/// one call. Two further contenders, channelsOnlyName and unfilteredName, do the first parts of
/// this library's work.
[[nodiscard]] std::vector<Question> pagingQuestions(const Workload& workload);
/// 1,000,000 floats through one filter, for several filters.
[[nodiscard]] std::vector<Question> filterQuestions();

inline constexpr const char* channelsOnlyName = "kvsig, channels only";
inline constexpr const char* unfilteredName = "kvsig, not filtered";
inline constexpr double windowSeconds = 10.0;

} // namespace kvsig::bench
