#pragma once

#include "kvsig/filters/IIRNotch.h"
#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/G1G2Source.h"
#include "tool/ChannelNames.h"
#include "tool/LeftOut.h"
#include "tool/PhysicalValues.h"
#include "tool/Recording.h"
#include "tool/RowDefinition.h"
#include "tool/SignalOptions.h"

#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kvsig::tool {

/// One row of an export or a picture: a source, and how its values become physical ones.
struct Row {
    DataSource* source = nullptr; ///< of the Rows that hold the row
    std::string name;
    std::string units;
    int channel = -1;    ///< the recorded channel, or -1 for a derivation
    double gain = 1.0;   ///< the scale that gives physical units
    double offset = 0.0; ///< added to the scaled values; 0 for derivations
    /// Of a recorded channel: where its counts are, and what they mean. Without it, as of
    /// derivations, values come from the source alone.
    Recording::Place place;
    std::optional<CountMap> countMap;
    bool microvolts = true;
    bool gap = false; ///< an empty row that sets others apart
};

/// The rows of a selection, with the averages that they refer to and the filters that they share.
/// Refers to its recording, which must outlive it; does not move.
class Rows final : public MontageContext {
  public:
    explicit Rows(const Recording& recording)
        : m_recording(&recording), m_names(*recording.reader) {}
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    /// Adds the rows that the options select; false with a complaint when one cannot be made.
    /// Gap rows of a montage are rows when `keepGaps`.
    bool select(const SignalOptions& options, bool keepGaps);
    [[nodiscard]] const std::vector<Row>& rows() const { return m_rows; }
    /// The reference that a montage's rows have in common; empty when they have none.
    [[nodiscard]] const std::string& reference() const { return m_reference; }

    AvgSource* averageReference(int index) override;
    int rowOf(const DataSource& source) override;

  private:
    bool selectChannels(const std::string& list);
    bool selectMontage(const MontageChoice& choice, bool keepGaps);
    /// False with a remark when the row's channels cannot be combined.
    bool addMontageRow(DataSource& source);
    void addGap(DataSource& source);
    bool add(const std::string& text);
    void addRecorded(int channel);
    bool addDifference(const RowDefinition& definition);
    bool append(std::unique_ptr<DataSource> source, const RowDefinition& definition);
    DataSource& keep(std::unique_ptr<DataSource> source);
    /// Why a derivation cannot be made; empty when it can.
    [[nodiscard]] std::string faultOf(const RowDefinition& definition) const;
    /// A row of a channel, or of a derivation that begins with one, without its source and name.
    [[nodiscard]] Row recordedRow(int channel) const;
    [[nodiscard]] Row derivedRow(int first) const;

    /// Says once of each name that several channels share which of them is taken.
    void remarkOnTwins(const std::string& name);
    /// Index of the average that a difference subtracts, made when needed.
    int averageOf(const RowDefinition& definition);
    [[nodiscard]] std::unique_ptr<AvgSource> makeAverage(const std::vector<int>& channels,
                                                         const std::vector<double>& weights) const;
    void applyFilters(const SignalOptions& options);

    const Recording* m_recording;
    ChannelNames m_names;
    std::set<int> m_remarked; ///< first channels of the shared names that were remarked on
    std::vector<Row> m_rows;
    std::vector<std::unique_ptr<DataSource>> m_sources;
    std::vector<std::unique_ptr<AvgSource>> m_averages;
    TrackedMontage m_montage;
    std::string m_reference;
    std::deque<IIRNotch> m_notches;
};

} // namespace kvsig::tool
