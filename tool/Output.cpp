#include "tool/Output.h"

#include <array>

namespace kvsig::tool {

bool Output::open(const std::string& path) {
    m_path = path;
    m_standard = path.empty() || path == "-";
    return m_standard || m_file.open(path.c_str());
}

bool Output::write(std::string_view data) {
    return m_standard ? toStdout(data.data(), data.size()) : m_file.write(data);
}

bool Output::writeAt(std::int64_t offset, const void* data, std::size_t bytes) {
    if (!m_standard)
        return m_file.writeAt(offset, data, bytes);
    if (!m_spool)
        m_spool.reset(std::tmpfile());
    m_failed = m_failed || !m_spool ||
               std::fseek(m_spool.get(), static_cast<long>(offset), SEEK_SET) != 0 ||
               std::fwrite(data, 1, bytes, m_spool.get()) != bytes;
    return !m_failed;
}

bool Output::commit() {
    if (!m_standard)
        return m_file.commit();
    if (m_spool)
        copySpool();
    m_failed = std::fflush(stdout) != 0 || m_failed;
    return !m_failed;
}

bool Output::copySpool() {
    std::array<char, 65536> block{};
    std::rewind(m_spool.get());
    while (!m_failed) {
        const std::size_t got = std::fread(block.data(), 1, block.size(), m_spool.get());
        if (got == 0)
            break;
        toStdout(block.data(), got);
    }
    m_failed = m_failed || std::ferror(m_spool.get()) != 0;
    return !m_failed;
}

bool Output::toStdout(const char* data, std::size_t bytes) {
    m_failed = m_failed || std::fwrite(data, 1, bytes, stdout) != bytes;
    return !m_failed;
}

std::string Output::error() const {
    return m_standard ? "standard output: cannot be written" : m_path + ": " + m_file.error();
}

} // namespace kvsig::tool
