#include "tool/plot/PageDrawing.h"

#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"
#include "tool/Words.h"
#include "tool/plot/PageCaption.h"

#include <algorithm>
#include <cmath>

namespace kvsig::tool {
namespace {

constexpr Colour ink{0.08, 0.08, 0.16};
constexpr Colour words{0.15, 0.15, 0.15};
constexpr Colour faint{0.45, 0.45, 0.45};
constexpr Colour majorLine{0.68, 0.72, 0.82};
constexpr Colour minorLine{0.87, 0.90, 0.95};
constexpr Colour eventInk{0.72, 0.22, 0.10};
constexpr double ownScaleRoom = 0.8; // of the row spacing

// Value to millimetres below the row's centre.
struct RowScale {
    double centre = 0.0;    ///< the value on the row's centre line
    double mmPerUnit = 0.0; ///< negative: positive values go up
    std::string note;       ///< what stands under the label
};

RowScale scaleOf(const Row& row, const TraceReducer& trace, const PageContent& content,
                 double rowSpacing) {
    const double span = double{trace.highest()} - double{trace.lowest()};
    const double room = ownScaleRoom * rowSpacing;
    RowScale scale;
    if (row.microvolts) {
        const bool own = hasOwnScale(row);
        const double sensitivity = own ? fittingSensitivity(span, room) : content.sensitivity;
        // The ECG is read with its R wave up, whatever the electrodes' convention.
        scale.mmPerUnit = (own ? -1.0 : 1.0) / sensitivity;
        // Without a low filter the electrodes' offset would carry the trace off the page.
        scale.centre = content.signals->lowFilter > 0 ? 0.0 : trace.centre();
        if (own)
            scale.note = shortestText(sensitivity) + " uV/mm";
        return scale;
    }
    scale.centre = trace.lowest() + 0.5 * span;
    scale.mmPerUnit = span > 0 ? -room / span : 0.0;
    scale.note = generalText(trace.lowest(), 4) + (span > 0 ? " … " : "") +
                 (span > 0 ? generalText(trace.highest(), 4) : "") + " " + row.units;
    return scale;
}

class PagePainter {
  public:
    PagePainter(Canvas& canvas, const PageLayout& layout, const PageContent& content)
        : m_canvas(canvas),
          m_layout(layout),
          m_content(content),
          m_rate(content.recording->reader->samplingRate()),
          m_start(static_cast<double>(content.range.first) / m_rate),
          m_duration(static_cast<double>(content.range.length()) / m_rate),
          m_grid(m_duration, layout.traceWidth()) {}

    void paint() {
        drawGrid();
        drawEvents();
        const auto& rows = m_content.rows->rows();
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (!rows[i].gap)
                drawRow(i, rows[i], (*m_content.traces)[i]);
        drawScaleBar();
        drawCaption();
    }

  private:
    [[nodiscard]] double xOf(double seconds) const {
        return m_layout.left + (seconds - m_start) / m_duration * m_layout.traceWidth();
    }

    // Calls draw(seconds) for each multiple of the step inside the page.
    template <typename Draw>
    void everyStep(double step, Draw draw) const {
        for (double k = std::ceil(m_start / step - 1e-9); k * step <= m_start + m_duration + 1e-9;
             k += 1.0)
            draw(k * step);
    }

    void drawGrid() {
        const auto vertical = [this](double width, Colour colour) {
            return [this, width, colour](double seconds) {
                m_canvas.line(xOf(seconds), m_layout.top, xOf(seconds), m_layout.bottom, width,
                              colour);
            };
        };
        if (m_grid.minor > 0)
            everyStep(m_grid.minor, vertical(0.1, minorLine));
        everyStep(m_grid.major, vertical(0.15, majorLine));
        m_canvas.line(m_layout.left, m_layout.bottom, m_layout.right, m_layout.bottom, 0.2, faint);
        everyStep(m_grid.labelEvery, [this](double seconds) {
            const double clock = m_content.recording->reader->getClockTime(seconds);
            m_canvas.line(xOf(seconds), m_layout.bottom, xOf(seconds), m_layout.bottom + 1.2, 0.2,
                          faint);
            m_canvas.text(xOf(seconds), m_layout.bottom + 4.6, clockText(std::fmod(clock, 86400.0)),
                          2.7, Align::centre, words);
        });
    }

    // Under the traces, so that nothing of them is covered.
    void drawEvents() {
        cairo_t* context = m_canvas.context();
        for (const EventMark& mark : m_content.events->marks) {
            const double x = xOf(mark.from);
            const double height = m_layout.top - 1.4 - mark.lane * eventLaneHeight;
            if (mark.to > mark.from) {
                cairo_set_source_rgba(context, eventInk.red, eventInk.green, eventInk.blue, 0.07);
                cairo_rectangle(context, x, m_layout.top, xOf(mark.to) - x,
                                m_layout.bottom - m_layout.top);
                cairo_fill(context);
            }
            if (mark.begins)
                m_canvas.line(x, mark.text.empty() ? m_layout.top : height, x, m_layout.bottom,
                              0.15, eventInk);
            if (!mark.text.empty())
                m_canvas.text(m_layout.left + mark.textX, height, mark.text, eventTextSize,
                              Align::left, eventInk, mark.textWidth);
        }
    }

    void drawRow(std::size_t index, const Row& row, const TraceReducer& trace) {
        const double centre = m_layout.rowCentre(index);
        const RowScale scale = scaleOf(row, trace, m_content, m_layout.rowSpacing);
        const double room = m_layout.rowSpacing;
        const bool note = !scale.note.empty();
        const double nameSize = std::min(3.1, (note ? 0.5 : 0.75) * room);
        const double labelRight = m_layout.left - 2.0;
        const double labelRoom = m_layout.left - 4.0;
        m_canvas.text(labelRight, centre + (note ? 0.0 : 0.35 * nameSize), row.name, nameSize,
                      Align::right, words, labelRoom);
        if (note)
            m_canvas.text(labelRight, centre + std::min(2.9, 0.45 * room), scale.note,
                          std::min(2.2, 0.38 * room), Align::right, faint, labelRoom);
        drawTrace(trace, centre, scale);
    }

    // Whether columns hold so much time that a line through their extremes would be solid ink.
    [[nodiscard]] bool isEnvelope(const TraceReducer& trace) const {
        constexpr double longestColumn = 0.06; // s; an alpha wave takes two of these at the least
        const auto columns = static_cast<double>(trace.columns().size());
        return columns > 0 && m_duration / columns > longestColumn;
    }

    void drawTrace(const TraceReducer& trace, double centre, const RowScale& scale) {
        cairo_t* context = m_canvas.context();
        cairo_save(context);
        const double above = m_content.events->lanes > 0 ? 0.5 : 4.0; // not over events' texts
        cairo_rectangle(context, m_layout.left, m_layout.top - above, m_layout.traceWidth(),
                        m_layout.bottom - m_layout.top + above);
        cairo_clip(context);
        const auto lineTo = [&](float position, double value) {
            // Far off the page a coordinate means nothing more, and the picture's formats overflow.
            constexpr double farAway = 2000.0;
            const double y = (value - scale.centre) * scale.mmPerUnit;
            cairo_line_to(context, m_layout.left + double{position} * m_layout.traceWidth(),
                          centre + std::clamp(y, -farAway, farAway));
        };
        if (isEnvelope(trace)) {
            drawEnvelope(trace.columns(), lineTo);
        } else {
            for (const TracePoint& point : trace.line())
                lineTo(point.position, double{point.value});
            cairo_set_source_rgb(context, ink.red, ink.green, ink.blue);
            cairo_set_line_width(context, 0.18);
            cairo_stroke(context);
        }
        cairo_restore(context);
    }

    // The columns' extremes light, so that neighbours show through; where most samples lie, dark.
    template <typename LineTo>
    void drawEnvelope(const std::vector<TraceColumn>& columns, LineTo lineTo) {
        cairo_t* context = m_canvas.context();
        const auto around = [&](auto upper, auto lower) {
            for (auto column = columns.begin(); column != columns.end(); ++column)
                lineTo(column->position, upper(*column));
            for (auto column = columns.rbegin(); column != columns.rend(); ++column)
                lineTo(column->position, lower(*column));
            cairo_close_path(context);
        };
        around([](const TraceColumn& c) { return double{c.high}; },
               [](const TraceColumn& c) { return double{c.low}; });
        cairo_set_source_rgba(context, ink.red, ink.green, ink.blue, 0.22);
        cairo_fill(context);
        around([](const TraceColumn& c) { return double{c.mean} + double{c.deviation}; },
               [](const TraceColumn& c) { return double{c.mean} - double{c.deviation}; });
        cairo_set_source_rgba(context, ink.red, ink.green, ink.blue, 0.6);
        cairo_set_line_width(context, 0.18);
        cairo_fill_preserve(context);
        cairo_stroke(context);
    }

    void drawScaleBar() {
        if (!pageHasCommonScale())
            return;
        const double microvolts = scaleBarLength(m_content.sensitivity);
        const double length = microvolts / m_content.sensitivity;
        const double x = m_layout.right - 1.5;
        const double low = m_layout.height - 2.0;
        m_canvas.line(x, low, x, low - length, 0.35, ink);
        for (const double y : {low, low - length})
            m_canvas.line(x - 0.8, y, x + 0.8, y, 0.35, ink);
        m_canvas.text(x - 1.8, low - 0.5 * length + 1.0, shortestText(microvolts) + " uV", 2.9,
                      Align::right, words);
    }

    [[nodiscard]] bool pageHasCommonScale() const {
        const auto& rows = m_content.rows->rows();
        return std::any_of(rows.begin(), rows.end(), kvsig::tool::hasCommonScale);
    }

    void drawCaption() {
        IDataReader& reader = *m_content.recording->reader;
        m_canvas.text(2.0, 6.0,
                      titleText(*m_content.recording, m_content.signals->montage,
                                m_content.rows->reference()),
                      3.6, Align::left, ink, 170.0);
        m_canvas.text(m_layout.right, 6.0,
                      clockText(std::fmod(reader.getClockTime(m_start), 86400.0)) + ", " +
                          clockText(m_start) + " into the recording, " +
                          generalText(m_duration, 6) + " s shown",
                      3.0, Align::right, words);
        const double speed = m_layout.traceWidth() / m_duration;
        m_canvas.text(2.0, 11.0,
                      captionText(pageHasCommonScale() ? m_content.sensitivity : 0.0, speed,
                                  *m_content.signals),
                      3.0, Align::left, words);
        std::string remarks;
        const auto remark = [&remarks](bool applies, const char* sentence) {
            if (applies)
                remarks += std::string(remarks.empty() ? "" : "; ") + sentence;
        };
        const auto& rows = m_content.rows->rows();
        const auto& traces = *m_content.traces;
        remark(m_content.signals->lowFilter <= 0 && pageHasCommonScale(),
               "each trace's median is taken off");
        remark(std::any_of(rows.begin(), rows.end(), hasOwnScale),
               "rows with a scale of their own: positive up");
        remark(std::any_of(traces.begin(), traces.end(),
                           [this](const TraceReducer& trace) { return isEnvelope(trace); }),
               "light: all values, dark: mean and standard deviation");
        if (m_content.events->left > 0)
            remarks += std::string(remarks.empty() ? "" : "; ") +
                       "event texts without room: " + std::to_string(m_content.events->left);
        m_canvas.text(2.0, m_layout.height - 2.5, remarks, 2.5, Align::left, faint);
    }

    Canvas& m_canvas;
    const PageLayout& m_layout;
    const PageContent& m_content;
    double m_rate;
    double m_start;
    double m_duration;
    TimeGrid m_grid;
};

} // namespace

bool hasCommonScale(const Row& row) {
    return !row.gap && row.microvolts && !startsWithNoCase(row.name, "ECG") &&
           !startsWithNoCase(row.name, "EKG");
}

bool hasOwnScale(const Row& row) { return !row.gap && !hasCommonScale(row); }

void drawPage(Canvas& canvas, const PageLayout& layout, const PageContent& content) {
    PagePainter(canvas, layout, content).paint();
}

} // namespace kvsig::tool
