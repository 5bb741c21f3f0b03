#pragma once

#include "kvsig/montage/DataSource.h"

#include <string>
#include <vector>

namespace kvsig {

/// A weighted sum of reader channels; montages use it for average references.
class KVSIG_API AvgSource : public DataSource {
  public:
    /// Without channels nothing is delivered: see setAvgChannels().
    explicit AvgSource(IDataReader& reader);
    /// A plain average: every weight is 1 / channels.size().
    AvgSource(IDataReader& reader, const std::vector<int>& channels);

    short type() override;
    /// The own name.
    const char* grid1() override;
    /// Empty: an average has no second input.
    const char* grid2() override;
    /// The own name if one was set, else the channel labels one after the other.
    const char* name() override;
    /// "A+B+C" for a plain average, else "A:0.500+B:0.250+C:0.250"; of a single channel "A+" and
    /// "A:0.500+", which still read as averages. There are no settings.
    void constructDefn(char* out, bool withSettings) override;
    /// Has no effect.
    void setChannel12(int channel1, int channel2) override;
    void setName(const char* name) override;
    int _getData(long first, long last, float* buf, double scale) override;

    /// @{
    /// Channels of the reader, and the weight of each.
    [[nodiscard]] const std::vector<int>& getAvgChannels() const { return m_channels; }
    [[nodiscard]] const std::vector<double>& getWeights() const { return m_weights; }
    /// @}

    /// @{
    /// Both empty the cache. A channel without a weight counts with weight 0.
    void setAvgChannels(const std::vector<int>& channels);
    void setWeights(const std::vector<double>& weights);
    /// @}

    /// Takes over settings, channels and weights of another average.
    void copyAttributes(const AvgSource& other);

  private:
    [[nodiscard]] double weight(std::size_t index) const;
    [[nodiscard]] bool isPlainAverage() const;
    [[nodiscard]] std::string definition() const;

    std::vector<int> m_channels;
    std::vector<double> m_weights;
    std::string m_name;
    std::string m_text; ///< keeps what name() hands out
};

} // namespace kvsig
