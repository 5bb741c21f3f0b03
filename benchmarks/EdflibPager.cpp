#include "EdflibPager.h"

#include "Paging.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <edflib.h>
#include <liquid/liquid.h>
#include <memory>
#include <span>
#include <stdexcept>
#include <vector>

namespace kvsig::bench {
namespace {

using LiquidFilter = std::shared_ptr<iirfilt_rrrf_s>;

LiquidFilter liquidFilter(const Recurrence& weights) {
    std::array<float, 3> numerator{weights.b0, weights.b1, weights.b2};
    std::array<float, 3> denominator{1.0F, -weights.a1, -weights.a2};
    return {iirfilt_rrrf_create(numerator.data(), numerator.size(), denominator.data(),
                                denominator.size()),
            iirfilt_rrrf_destroy};
}

class EdflibPager {
  public:
    EdflibPager(const std::string& path, const PagingChain& chain)
        : m_runIn(chain.runIn),
          m_filters{liquidFilter(chain.lowPass), liquidFilter(chain.highPass),
                    liquidFilter(chain.notch)} {
        if (edfopen_file_readonly(path.c_str(), &m_header, EDFLIB_DO_NOT_READ_ANNOTATIONS) != 0)
            throw std::runtime_error(path + ": EDFlib does not open it");
        const double recordSeconds =
            static_cast<double>(m_header.datarecord_duration) / EDFLIB_TIME_DIMENSION;
        m_pageLength =
            std::lround(pageSeconds * m_header.signalparam[0].smp_in_datarecord / recordSeconds);
        const auto length = static_cast<std::size_t>(m_runIn + m_pageLength);
        m_channels.resize(static_cast<std::size_t>(m_header.edfsignals));
        for (const auto& [first, second] : pagingRows)
            for (const int channel : {first, second})
                m_channels[static_cast<std::size_t>(channel)].resize(length);
        m_rows.assign(pagingRows.size(), std::vector<float>(length));
    }
    ~EdflibPager() { edfclose_file(m_header.handle); }
    EdflibPager(const EdflibPager&) = delete;
    EdflibPager& operator=(const EdflibPager&) = delete;

    [[nodiscard]] std::int64_t pages() const {
        return pagingPages(static_cast<double>(m_header.file_duration) / EDFLIB_TIME_DIMENSION);
    }
    void page(std::int64_t index) {
        for (std::size_t c = 0; c < m_channels.size(); ++c)
            if (!m_channels[c].empty())
                read(static_cast<int>(c), index * m_pageLength - m_runIn);
        for (std::size_t r = 0; r < m_rows.size(); ++r) {
            derive(r);
            for (const LiquidFilter& filter : m_filters) {
                iirfilt_rrrf_reset(filter.get());
                iirfilt_rrrf_execute_block(filter.get(), m_rows[r].data(),
                                           static_cast<unsigned int>(m_rows[r].size()),
                                           m_rows[r].data());
            }
        }
    }
    [[nodiscard]] std::size_t callerBytes() const {
        return m_rows.size() * static_cast<std::size_t>(m_pageLength) * sizeof(float);
    }

  private:
    void read(int channel, long first) {
        const std::span<double> samples(m_channels[static_cast<std::size_t>(channel)]);
        const auto missing = static_cast<std::size_t>(std::max(-first, 0L));
        std::fill_n(samples.begin(), missing, 0.0);
        edfseek(m_header.handle, channel, std::max(first, 0L), EDFSEEK_SET);
        edfread_physical_samples(m_header.handle, channel,
                                 static_cast<int>(samples.size() - missing),
                                 samples.subspan(missing).data());
    }
    void derive(std::size_t row) {
        const auto& first = m_channels[static_cast<std::size_t>(pagingRows[row].first)];
        const auto& second = m_channels[static_cast<std::size_t>(pagingRows[row].second)];
        std::transform(first.begin(), first.end(), second.begin(), m_rows[row].begin(),
                       [](double a, double b) { return static_cast<float>(a - b); });
    }

    edf_hdr_struct m_header{};
    long m_runIn;
    long m_pageLength = 0; ///< samples
    std::array<LiquidFilter, 3> m_filters;
    std::vector<std::vector<double>> m_channels; ///< those of no row stay empty
    std::vector<std::vector<float>> m_rows;
};

} // namespace

Contender edflibPager(const std::string& path, const PagingChain& chain) {
    return {"EDFlib, liquid-dsp", [path, chain] {
                const auto pager = std::make_shared<EdflibPager>(path, chain);
                return Work{.run =
                                [pager] {
                                    for (std::int64_t i = 0; i < pager->pages(); ++i)
                                        pager->page(i);
                                },
                            .callerBytes = [pager] { return pager->callerBytes(); }};
            }};
}

} // namespace kvsig::bench
