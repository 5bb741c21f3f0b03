#pragma once

#include "kvsig/readers/HeaderBlock.h"
#include "kvsig/util/File.h"

#include <cstdint>
#include <string>
#include <utility>

namespace kvsig {

/// A file whose headers are read. Its length is taken once, so that all that is worked out of it
/// agrees, and what it has but does not give is remembered: zeros in its place would make other
/// names, scales and places without a word.
class HeaderFile {
  public:
    /// As File::open(); forgets the fault of the file before.
    bool open(const char* path, std::string* reason = nullptr);
    void close() { m_file.close(); }

    [[nodiscard]] const File& file() const { return m_file; }
    /// The length in bytes when it was opened.
    [[nodiscard]] std::int64_t size() const { return m_size; }

    /// Up to `length` bytes from `offset` on, as many as the file has there; `what` they are stands
    /// in the fault if one of them does not arrive.
    [[nodiscard]] HeaderBlock read(const std::string& what, std::int64_t offset,
                                   std::int64_t length) const;
    /// "list of channels at offset 900 cannot be read": the first of this kind; empty without.
    [[nodiscard]] const std::string& fault() const { return m_fault; }
    /// The same, and forgets it.
    std::string takeFault() { return std::exchange(m_fault, {}); }

  private:
    File m_file;
    std::int64_t m_size = 0;
    mutable std::string m_fault; ///< what reading brings to light changes nothing else
};

} // namespace kvsig
