#pragma once

#include "kvsig/kernel/IDataReader.h"

#include <utility>

namespace kvsig {

/// Owns one reference to a reader: AddRef() when it takes one, Release() when it lets go.
class ReaderPtr {
  public:
    ReaderPtr() = default;
    /// Takes a reference; null holds nothing.
    explicit ReaderPtr(IDataReader* reader) : m_reader(reader) {
        if (m_reader)
            m_reader->AddRef();
    }
    /// @{
    /// Copies hold a reference of their own, moves take it over.
    ReaderPtr(const ReaderPtr& other) : ReaderPtr(other.m_reader) {}
    ReaderPtr(ReaderPtr&& other) noexcept : m_reader(std::exchange(other.m_reader, nullptr)) {}
    ReaderPtr& operator=(ReaderPtr other) noexcept {
        std::swap(m_reader, other.m_reader);
        return *this;
    }
    /// @}
    ~ReaderPtr() {
        if (m_reader)
            m_reader->Release();
    }

    /// @{
    /// The reader; null when nothing is held.
    [[nodiscard]] IDataReader* get() const { return m_reader; }
    IDataReader& operator*() const { return *m_reader; }
    IDataReader* operator->() const { return m_reader; }
    explicit operator bool() const { return m_reader != nullptr; }
    /// @}

  private:
    IDataReader* m_reader = nullptr;
};

} // namespace kvsig
