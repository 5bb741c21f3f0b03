#include "tool/synth/RecordingPlan.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "tool/synth/Behaviour.h"
#include "tool/synth/PlainNumber.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kvsig::tool {
namespace {

constexpr double mostSignals = 9999;
constexpr double mostRecords = 99'999'999;
constexpr double largestRecord = 256.0 * 1024 * 1024;

/// In a mix of rates the rate tells what is recorded: signals from here on come from electrodes,
constexpr double slowestElectrodeRate = 100;
/// those from here on from breathing belts, and the rest are vital signs.
constexpr double slowestBreathingRate = 4;

struct Refusal {
    std::string reason;
};

[[noreturn]] void refuse(const std::string& option, double value, const std::string& why) {
    throw Refusal{option + " " + shortestText(value) + ": " + why};
}

// Also false for NaN.
bool isPositive(double value) { return value > 0 && std::isfinite(value); }

std::int64_t samplesInRecord(const std::string& option, double rate, double recordDuration) {
    if (!isPositive(rate))
        refuse(option, rate, "the rate must be greater than 0 Hz");
    const double exact = rate * recordDuration;
    const double whole = std::floor(exact + 0.5);
    if (exact > largestRecord)
        refuse(option, rate, "a record of " + shortestText(recordDuration) + " s is too large");
    if (whole < 1 || std::fabs(exact - whole) > 1e-9 * whole)
        refuse(option, rate,
               "a record of " + shortestText(recordDuration) + " s would hold " +
                   generalText(exact, 6) + " samples, which is no whole number above 0");
    return saturate<std::int64_t>(whole);
}

class Planner {
  public:
    explicit Planner(const SynthOptions& options) : m_options(options) {}

    RecordingPlan plan() {
        checkTimes();
        EdfHeader& header = m_plan.header;
        header.kind = m_options.kind;
        header.start = m_options.start;
        header.recordDuration = m_options.recordDuration;
        header.remark = header.kind == EdfKind::edfPlus ? "synthetic" : "Synthetic EEG";
        if (m_options.rates.empty())
            addStandardSignals();
        else
            addRateGroups();
        setHeadRate();
        header.records = recordCount();
        if (header.kind == EdfKind::edfPlus)
            addAnnotationSignal();
        checkSizes();
        return std::move(m_plan);
    }

  private:
    void checkTimes() const {
        if (!isPositive(m_options.duration))
            refuse("--duration", m_options.duration, "must be greater than 0 s");
        if (!isPositive(m_options.recordDuration))
            refuse("--record-duration", m_options.recordDuration, "must be greater than 0 s");
        if (plainNumber(m_options.recordDuration).size() > 8)
            refuse("--record-duration", m_options.recordDuration,
                   "does not fit in the 8 characters of its header field");
        if (!(m_options.mains >= 0) || !std::isfinite(m_options.mains))
            refuse("--mains", m_options.mains, "must be a frequency in Hz, or 0 for no hum");
    }

    static std::size_t checkedCount(const std::string& option, double count) {
        if (!(count >= 1) || count != std::floor(count) || count > mostSignals)
            refuse(option, count, "must be a whole number from 1 to 9999");
        return saturate<std::size_t>(count);
    }

    [[nodiscard]] std::int64_t recordCount() const {
        // A day in records of 0.1 s is no whole quotient in binary.
        const double records =
            std::ceil(m_options.duration / m_options.recordDuration * (1 - 1e-12));
        if (records > mostRecords)
            refuse("--duration", m_options.duration,
                   "more than 99999999 records of " + shortestText(m_options.recordDuration) +
                       " s do not fit in a header");
        return saturate<std::int64_t>(std::max(records, 1.0));
    }

    void addStandardSignals() {
        const std::size_t channels = checkedCount("--channels", m_options.channels);
        const std::int64_t samples =
            samplesInRecord("--rate", m_options.rate, m_options.recordDuration);
        const auto partOf = [samples](std::int64_t divisor) {
            return samples % divisor == 0 ? samples / divisor : samples;
        };
        for (std::size_t i = 0; i < channels; ++i) {
            const bool slower = m_options.mixed && electrodeAt(m_electrodes).onChest;
            addElectrode(slower ? partOf(2) : samples);
        }
        if (!m_options.mixed)
            return;
        const auto seconds =
            std::clamp<std::int64_t>(saturate<std::int64_t>(m_options.recordDuration), 1, samples);
        addBreathing(partOf(8));
        addBreathing(partOf(8));
        addVitalSign(seconds);
        addVitalSign(seconds);
    }

    void addRateGroups() {
        double all = 0;
        for (const RateGroup& group : m_options.rates) {
            const std::size_t count = checkedCount("--rates", group.count);
            all += group.count;
            checkedCount("--rates", all);
            const std::int64_t samples =
                samplesInRecord("--rates", group.rate, m_options.recordDuration);
            for (std::size_t i = 0; i < count; ++i) {
                if (group.rate >= slowestElectrodeRate)
                    addElectrode(samples);
                else if (group.rate >= slowestBreathingRate)
                    addBreathing(samples);
                else
                    addVitalSign(samples);
            }
        }
    }

    void addElectrode(std::int64_t samples) {
        Electrode electrode = electrodeAt(m_electrodes++);
        EdfSignal signal;
        signal.label = electrode.onChest ? electrode.name : "EEG " + electrode.name + "-Ref";
        signal.transducer = "AgAgCl electrode";
        signal.units = "uV";
        if (m_options.kind == EdfKind::bdf) {
            signal.physicalMinimum = -262144;
            signal.physicalMaximum = 262143;
            signal.digitalMinimum = -8388608;
            signal.digitalMaximum = 8388607;
        } else {
            // 0.1 uV to the step, without a remainder.
            signal.physicalMinimum = -3276.8;
            signal.physicalMaximum = 3276.7;
            signal.digitalMinimum = -32768;
            signal.digitalMaximum = 32767;
        }
        addSignal(signal, samples, std::move(electrode));
    }

    void addBreathing(std::int64_t samples) {
        static constexpr std::array<const char*, 3> places{"Resp thorax", "Resp abdomen",
                                                           "Airflow"};
        const std::size_t index = m_breathing++;
        const std::string label = index < places.size() ? std::string(places[index])
                                                        : "Resp " + std::to_string(index + 1);
        addSignal({label, "", "mV", -3.2768, 3.2767, -32768, 32767, 0}, samples,
                  SlowKind::breathing);
    }

    void addVitalSign(std::int64_t samples) {
        struct VitalSign {
            SlowKind kind;
            EdfSignal signal;
        };
        static const std::array<VitalSign, 3> signs{
            VitalSign{SlowKind::oxygen, {"SpO2", "Oximeter", "%", 0, 100, 0, 1000, 0}},
            VitalSign{SlowKind::temperature, {"Temp", "Thermistor", "degC", 0, 50, 0, 5000, 0}},
            VitalSign{SlowKind::pulse, {"Pulse", "Oximeter", "/min", 0, 250, 0, 2500, 0}}};
        const std::size_t round = m_vitalSigns / signs.size();
        const VitalSign& sign = signs[m_vitalSigns++ % signs.size()];
        EdfSignal signal = sign.signal;
        if (round > 0)
            signal.label += " " + std::to_string(round + 1);
        addSignal(signal, samples, sign.kind);
    }

    void addSignal(EdfSignal signal, std::int64_t samples,
                   std::variant<Electrode, SlowKind> content) {
        signal.samplesPerRecord = samples;
        m_plan.header.signals.push_back(std::move(signal));
        m_plan.contents.push_back(std::move(content));
    }

    void setHeadRate() {
        for (const EdfSignal& signal : m_plan.header.signals)
            m_plan.headSamples = std::max(m_plan.headSamples, signal.samplesPerRecord);
        m_plan.headRate = static_cast<double>(m_plan.headSamples) / m_options.recordDuration;
    }

    void addAnnotationSignal() {
        const double duration =
            static_cast<double>(m_plan.header.records) * m_options.recordDuration;
        const std::size_t mostTexts =
            2 + saturate<std::size_t>(m_options.recordDuration / Behaviour::shortestPhaseSeconds);
        m_plan.annotations =
            AnnotationWriter(m_options.recordDuration, duration, mostTexts, eyesClosedText.size());
        const std::size_t bytes = m_plan.annotations.bytesPerRecord();
        EdfSignal signal{"EDF Annotations", "", "", -1, 1, -32768, 32767, 0};
        signal.samplesPerRecord = static_cast<std::int64_t>((bytes + 1) / 2);
        m_plan.header.signals.push_back(signal);
    }

    void checkSizes() const {
        const EdfHeader& header = m_plan.header;
        if (static_cast<double>(header.signals.size()) > mostSignals)
            refuse("--channels", static_cast<double>(header.signals.size() - 1),
                   "with the annotation signal a header has room for 9998");
        const auto bytes = static_cast<double>(header.recordBytes());
        if (bytes > largestRecord)
            refuse("--record-duration", m_options.recordDuration,
                   "a record would take " + generalText(bytes / (1024 * 1024), 4) +
                       " MiB, more than 256");
    }

    const SynthOptions& m_options;
    RecordingPlan m_plan;
    std::size_t m_electrodes = 0;
    std::size_t m_breathing = 0;
    std::size_t m_vitalSigns = 0;
};

} // namespace

std::optional<RecordingPlan> planRecording(const SynthOptions& options, std::string& reason) {
    try {
        return Planner(options).plan();
    } catch (const Refusal& refusal) {
        reason = refusal.reason;
        return std::nullopt;
    }
}

} // namespace kvsig::tool
