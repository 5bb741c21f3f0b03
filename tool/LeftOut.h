#pragma once

#include "kvsig/montage/SourceMontage.h"

#include <set>
#include <string>
#include <vector>

/// Definitions of a montage that could not be resolved.
namespace kvsig::tool {

struct LeftOut {
    std::vector<std::string> rows, averages;
    std::vector<std::string> nonsense; ///< what is no definition at all
};

[[nodiscard]] LeftOut leftOutOf(const SourceMontage& montage);

/// A montage that knows where its unresolved rows would have stood.
class TrackedMontage final : public SourceMontage {
  public:
    using SourceMontage::createSource;
    DataSource* createSource(const char* defn) override;
    void deleteSources() override;

    /// Whether a row was left out right in front of source `index`, or behind the last one.
    [[nodiscard]] bool leftOutBefore(int index) const { return m_leftOutBefore.contains(index); }

  private:
    std::set<int> m_leftOutBefore;
};

} // namespace kvsig::tool
