#include "kvsig/util/File.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace kvsig {
namespace {

static_assert(sizeof(off_t) == 8, "recordings grow beyond 4 GiB");

std::string whyNotRegular(mode_t mode) {
    return S_ISDIR(mode) ? "is a directory, not a recording" : "is not a regular file";
}

std::string errorWords(int code) {
    switch (code) {
    case ENOENT:
        return "no such file";
    case EACCES:
        return "permission denied";
    default:
        return std::generic_category().message(code);
    }
}

} // namespace

File::~File() { close(); }

File::File(File&& other) noexcept : m_handle(std::exchange(other.m_handle, -1)) {}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        close();
        m_handle = std::exchange(other.m_handle, -1);
    }
    return *this;
}

bool File::open(const char* path, std::string* reason) {
    close();
    std::string why;
    // O_NONBLOCK: opening a FIFO must not wait for a writer; it means nothing to regular files.
    const int handle = ::open(path ? path : "", O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat info {};
    if (handle < 0 || ::fstat(handle, &info) != 0)
        why = errorWords(errno);
    else if (!S_ISREG(info.st_mode))
        why = whyNotRegular(info.st_mode);
    if (why.empty()) {
        m_handle = handle;
        return true;
    }
    if (handle >= 0)
        ::close(handle);
    if (reason)
        *reason = why;
    return false;
}

void File::close() {
    if (m_handle >= 0)
        ::close(std::exchange(m_handle, -1));
}

std::int64_t File::size() const {
    struct stat info {};
    return m_handle >= 0 && ::fstat(m_handle, &info) == 0 ? info.st_size : 0;
}

std::int64_t File::readAt(std::int64_t offset, void* dest, std::int64_t bytes) const {
    if (m_handle < 0 || offset < 0 || bytes <= 0)
        return 0;
    auto* out = static_cast<char*>(dest);
    std::int64_t done = 0;
    while (done < bytes) {
        const ssize_t n =
            ::pread(m_handle, out + done, static_cast<std::size_t>(bytes - done), offset + done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += n;
    }
    return done;
}

} // namespace kvsig
