#pragma once

#include <string>
#include <string_view>

/// Words for people, on standard error, and texts made fit for output.
namespace kvsig::tool {

/// Writes "kvsig: " and the sentence.
void complain(const std::string& sentence);
/// The same for what the user should know and what stops nothing; silent after setQuiet(true).
void remark(const std::string& sentence);
/// The first sentence that complain() was given since this was called last; empty without one.
[[nodiscard]] std::string takeComplaint();
void setQuiet(bool quiet);

/// Valid UTF-8: bytes that are not are taken as Latin-1, the whole text at once.
[[nodiscard]] std::string toUtf8(std::string_view bytes);

/// The same for a terminal: control characters become "\x1b" and the like.
[[nodiscard]] std::string printable(std::string_view bytes);

/// Seconds as "hh:mm:ss", with hundredths where there are any.
[[nodiscard]] std::string clockText(double seconds);

} // namespace kvsig::tool
