#include "Questions.h"
#include "Reading.h"
#include "StraightFile.h"

#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace kvsig::bench {
namespace {

void readHeader(const std::string& path, std::vector<char>& header) {
    const int handle = ::open(path.c_str(), O_RDONLY);
    if (::pread(handle, header.data(), header.size(), 0) != static_cast<ssize_t>(header.size()))
        throw std::runtime_error(path + ": cannot be read");
    ::close(handle);
}

} // namespace

Question openQuestion(const Workload& workload) {
    Question question{.task = "open and header",
                      .workload = workload.name + "  " + workload.what,
                      .runs = 200,
                      .goal = 2.0,
                      .contenders = {}};
    const std::string path = workload.path;
    for (const Reader& reader : readers())
        question.contenders.push_back(
            {reader.name, [reader, path] {
                 if (reader.name != plainName)
                     return Work{.run = [reader, path] { reader.open(path); }};
                 const auto bytes = static_cast<std::size_t>(StraightFile(path).dataOffset());
                 const auto header = std::make_shared<std::vector<char>>(bytes);
                 return Work{.run = [path, header] { readHeader(path, *header); }};
             }});
    return question;
}

} // namespace kvsig::bench
