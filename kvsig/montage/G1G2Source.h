#pragma once

#include "kvsig/montage/DataSource.h"

#include <string>

namespace kvsig {

class AvgSource;

/// A bipolar or referential derivation: grid 1 minus grid 2.
class KVSIG_API G1G2Source : public DataSource {
  public:
    /// A channel 2 with this bit set names an average reference of the montage (bit cleared: its
    /// index) instead of a channel of the reader.
    static constexpr int averageBit = 0x1000;

    /// -1 means no channel: without channel 2 the source is channel 1 against its own recording
    /// reference. Equal channels are a flat line.
    G1G2Source(IDataReader& reader, int channel1, int channel2);

    short type() override;
    const char* grid1() override;
    const char* grid2() override;
    /// The own name if one was set, else "grid1-grid2"; eight blanks for a gap row.
    const char* name() override;
    void constructDefn(char* out, bool withSettings) override;
    void setChannel12(int channel1, int channel2) override;
    void setName(const char* name) override;
    int _getData(long first, long last, float* buf, double scale) override;

    /// @{
    /// As they were given: -1 for none, channel 2 perhaps with averageBit.
    [[nodiscard]] int channel1() const { return m_channel1; }
    [[nodiscard]] int channel2() const { return m_channel2; }
    /// @}

    /// @{
    /// The scale of a polygraphic channel as the host draws it, see PolyScale; it changes no
    /// sample.
    [[nodiscard]] bool showScaling() const { return m_scale.showScaling; }
    [[nodiscard]] bool transparentScale() const { return m_scale.transparentScale; }
    [[nodiscard]] double polyMinimum() const { return m_scale.minimum; }
    [[nodiscard]] double polyMaximum() const { return m_scale.maximum; }
    void setShowScaling(bool show) { m_scale.showScaling = show; }
    void setTransparentScale(bool transparent) { m_scale.transparentScale = transparent; }
    void setPolyMinimum(double minimum) { m_scale.minimum = minimum; }
    void setPolyMaximum(double maximum) { m_scale.maximum = maximum; }
    /// @}

    /// @{
    /// The reader's description of channel 1.
    [[nodiscard]] short channelType() const;
    [[nodiscard]] const char* channelUnits() const;
    [[nodiscard]] double defaultPolyMinimum() const;
    [[nodiscard]] double defaultPolyMaximum() const;
    /// @}

    /// Takes over settings and scale of another source; not its channels or name.
    void copyAttributes(const G1G2Source& other);

  private:
    [[nodiscard]] bool isReaderChannel2() const;
    [[nodiscard]] AvgSource* averageReference() const;

    int m_channel1;
    int m_channel2;
    PolyScale m_scale;
    std::string m_name;
    std::string m_text; ///< keeps what the text getters hand out
};

} // namespace kvsig
