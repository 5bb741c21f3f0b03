#include "kvsig/util/OutputFile.h"

#include "kvsig/util/Text.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace kvsig {
namespace {

static_assert(sizeof(off_t) == 8, "recordings grow beyond 4 GiB");

constexpr std::size_t bufferSize = std::size_t{256} * 1024;

std::string errorWords(int code) {
    switch (code) {
    case ENOENT:
    case ENOTDIR:
        return "no such directory";
    case EACCES:
    case EPERM:
        return "permission denied";
    case EISDIR:
        return "is a directory";
    case ENOSPC:
    case EDQUOT:
        return "no space left on the disk";
    case ESPIPE:
        return "cannot be written out of order: not a file on disk";
    default:
        return std::generic_category().message(code);
    }
}

// The file that a symbolic link leads to; the path itself when it is no link or leads nowhere.
std::string linkGoal(const char* path) {
    const std::unique_ptr<char, void (*)(void*)> goal(::realpath(path, nullptr), &std::free);
    return goal ? goal.get() : path;
}

std::string uniqueNameBeside(const std::string& target) {
    static std::atomic<unsigned> counter{0};
    return target + "." + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".tmp";
}

bool reachesDisk(int handle) {
    int code = 0;
    do {
        code = ::fsync(handle);
    } while (code != 0 && errno == EINTR);
    return code == 0;
}

// These lead to an open descriptor even where a regular file stands behind it (/dev/stdout of a
// redirected command), and what others wrote there before must stay.
bool namesOpenDescriptor(std::string_view path) {
    return path == "/dev/stdout" || path == "/dev/stderr" || path.starts_with("/dev/fd/") ||
           path.starts_with("/proc/");
}

} // namespace

OutputFile::~OutputFile() { discard(); }

bool OutputFile::open(const char* path) {
    discard();
    m_error.clear();
    m_pending.clear();
    m_end = 0;
    m_through = m_replaces = false;
    if (viewOf(path).empty()) {
        m_error = "no file name";
        return false;
    }
    struct stat info {};
    const bool exists = ::stat(path, &info) == 0;
    if (exists && S_ISDIR(info.st_mode))
        return fail(EISDIR);
    if (namesOpenDescriptor(path) || (exists && !S_ISREG(info.st_mode)))
        return openThrough(path);
    // Renaming needs no right to the old file itself, but a file marked read-only is not replaced.
    if (exists && ::access(path, W_OK) != 0)
        return fail(errno);
    m_replaces = exists;
    m_target = linkGoal(path);
    if (!openBeside())
        return false;
    if (exists)
        (void)::fchmod(m_handle, info.st_mode & 07777U);
    return true;
}

bool OutputFile::openThrough(const char* path) {
    m_through = true;
    m_handle = ::open(path, O_WRONLY | O_CLOEXEC);
    return m_handle >= 0 || fail(errno);
}

bool OutputFile::openBeside() {
    // A name left behind by a killed process of the same number is stepped over.
    do {
        m_temporary = uniqueNameBeside(m_target);
        m_handle = ::open(m_temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (m_handle < 0 && errno == EEXIST);
    if (m_handle >= 0)
        return true;
    m_temporary.clear();
    return fail(errno);
}

bool OutputFile::write(const void* data, std::size_t bytes) {
    if (!isOpen() || !m_error.empty())
        return false;
    const auto* from = static_cast<const char*>(data);
    if (m_pending.size() + bytes < bufferSize) {
        m_pending.insert(m_pending.end(), from, from + bytes);
        return true;
    }
    if (!flush() || !put(m_end, from, bytes, true))
        return false;
    m_end += static_cast<std::int64_t>(bytes);
    return true;
}

bool OutputFile::writeAt(std::int64_t offset, const void* data, std::size_t bytes) {
    if (!isOpen() || !m_error.empty() || !flush())
        return false;
    return offset < 0 ? fail(EINVAL) : put(offset, static_cast<const char*>(data), bytes, false);
}

bool OutputFile::flush() {
    if (!put(m_end, m_pending.data(), m_pending.size(), true))
        return false;
    m_end += static_cast<std::int64_t>(m_pending.size());
    m_pending.clear();
    return true;
}

bool OutputFile::put(std::int64_t offset, const char* data, std::size_t bytes, bool append) {
    while (bytes > 0) {
        // Pipes know no position; what is appended to them simply follows.
        const ssize_t n = m_through && append ? ::write(m_handle, data, bytes)
                                              : ::pwrite(m_handle, data, bytes, offset);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return fail(errno);
        data += n;
        offset += n;
        bytes -= static_cast<std::size_t>(n);
    }
    return true;
}

bool OutputFile::commit() {
    bool done = isOpen() && m_error.empty() && flush();
    // Some systems put the rename on disk before the bytes: the old file must not go that way.
    if (done && m_replaces && !reachesDisk(m_handle))
        done = fail(errno);
    if (done && ::close(std::exchange(m_handle, -1)) != 0)
        done = fail(errno);
    if (done && !m_temporary.empty() && ::rename(m_temporary.c_str(), m_target.c_str()) != 0)
        done = fail(errno);
    if (done)
        m_temporary.clear();
    discard();
    return done;
}

void OutputFile::discard() {
    closeHandle();
    if (!m_temporary.empty())
        ::unlink(std::exchange(m_temporary, {}).c_str());
}

bool OutputFile::fail(int code) {
    if (m_error.empty())
        m_error = errorWords(code);
    return false;
}

void OutputFile::closeHandle() {
    if (m_handle >= 0)
        ::close(std::exchange(m_handle, -1));
}

} // namespace kvsig
