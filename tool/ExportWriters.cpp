#include "tool/ExportWriters.h"

#include "kvsig/util/NumberText.h"

#include <bit>

namespace kvsig::tool {
namespace {

static_assert(std::endian::native == std::endian::little, "npy headers below say little-endian");

class TextTable final : public TableWriter {
  public:
    TextTable(Output& output, const TableContent& content, char separator)
        : m_output(output), m_content(content), m_separator(separator) {}

    bool writeHead() override {
        std::string line = "time";
        for (const Row& row : *m_content.rows)
            line += m_separator + quoted(row.name);
        return m_output.write(line + "\n");
    }

    bool writeValues(const RowStream& stream, std::size_t rows) override {
        return writeLines(stream.window(), rows, [&stream](std::size_t row, std::size_t k) {
            return shortestText(stream.values(row)[k]);
        });
    }

    bool writeRaw(SampleRange window,
                  const std::vector<std::vector<std::int32_t>>& columns) override {
        return writeLines(window, columns.size(), [&columns](std::size_t row, std::size_t k) {
            return std::to_string(columns[row][k]);
        });
    }

  private:
    template <typename ValueText>
    bool writeLines(SampleRange window, std::size_t rows, ValueText valueText) {
        m_text.clear();
        for (long k = 0; k < window.length(); ++k) {
            m_text += shortestText(static_cast<double>(window.first + k) / m_content.samplingRate);
            for (std::size_t row = 0; row < rows; ++row) {
                m_text += m_separator;
                m_text += valueText(row, static_cast<std::size_t>(k));
            }
            m_text += '\n';
        }
        return m_output.write(m_text);
    }

    [[nodiscard]] std::string quoted(const std::string& name) const {
        if (name.find_first_of(std::string("\"\r\n") + m_separator) == std::string::npos)
            return name;
        std::string text = "\"";
        for (const char c : name)
            text += c == '"' ? std::string("\"\"") : std::string(1, c);
        return text + "\"";
    }

    Output& m_output;
    TableContent m_content;
    char m_separator;
    std::string m_text;
};

// Format: https://numpy.org/doc/stable/reference/generated/numpy.lib.format.html, version 1.0.
class NumpyArray final : public TableWriter {
  public:
    NumpyArray(Output& output, const TableContent& content)
        : m_output(output), m_content(content) {}

    bool writeHead() override {
        constexpr std::size_t magicLength = 10;
        constexpr std::size_t alignment = 64;
        std::string words = "{'descr': '" + std::string(m_content.raw ? "<i4" : "<f4") +
                            "', 'fortran_order': False, 'shape': (" +
                            std::to_string(m_content.rows->size()) + ", " +
                            std::to_string(m_content.range.length()) + "), }";
        while ((magicLength + words.size() + 1) % alignment != 0)
            words += ' ';
        words += '\n';
        std::string head = "\x93NUMPY";
        head += std::string{1, 0, static_cast<char>(words.size() % 256),
                            static_cast<char>(words.size() / 256)};
        head += words;
        m_dataOffset = static_cast<std::int64_t>(head.size());
        return m_output.writeAt(0, head.data(), head.size());
    }

    bool writeValues(const RowStream& stream, std::size_t rows) override {
        for (std::size_t row = 0; row < rows; ++row)
            if (!writeRun(row, stream.window(), stream.values(row)))
                return false;
        return true;
    }

    bool writeRaw(SampleRange window,
                  const std::vector<std::vector<std::int32_t>>& columns) override {
        for (std::size_t row = 0; row < columns.size(); ++row)
            if (!writeRun(row, window, columns[row].data()))
                return false;
        return true;
    }

  private:
    template <typename Value>
    bool writeRun(std::size_t row, SampleRange window, const Value* values) {
        static_assert(sizeof(Value) == 4);
        const auto place = static_cast<std::int64_t>(row) * m_content.range.length() +
                           (window.first - m_content.range.first);
        return m_output.writeAt(m_dataOffset + 4 * place, values,
                                4 * static_cast<std::size_t>(window.length()));
    }

    Output& m_output;
    TableContent m_content;
    std::int64_t m_dataOffset = 0;
};

} // namespace

std::unique_ptr<TableWriter> makeTableWriter(const std::string& format, Output& output,
                                             const TableContent& content) {
    if (format == "npy")
        return std::make_unique<NumpyArray>(output, content);
    return std::make_unique<TextTable>(output, content, format == "tsv" ? '\t' : ',');
}

} // namespace kvsig::tool
