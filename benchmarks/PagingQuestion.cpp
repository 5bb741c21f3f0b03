#include "KvsigPager.h"
#include "Paging.h"
#include "Questions.h"

#include <memory>

namespace kvsig::bench {
namespace {

template <typename Pager, typename... Arguments>
Contender pagingContender(const char* name, void (Pager::*page)(std::int64_t),
                          Arguments... arguments) {
    return {name, [=] {
                const auto pager = std::make_shared<Pager>(arguments...);
                return Work{.run =
                                [pager, page] {
                                    for (std::int64_t i = 0; i < pager->pages(); ++i)
                                        (*pager.*page)(i);
                                },
                            .callerBytes = [pager] { return pager->callerBytes(); }};
            }};
}

} // namespace

Question pagingQuestion(const Workload& workload) {
    const std::string& path = workload.path;
    const PagingChain chain = KvsigPager(path).chain();
    const StraightFile file(path);
    const double rate = static_cast<double>(file.pointsPerRecord()) / file.recordSeconds();
    const auto pages = static_cast<double>(pagingPages(file.duration()));
    return {.task = "first hour in 10 s pages, 18 bipolar rows, 3 filters, row by row",
            .workload = workload.name + "  " + workload.what,
            .values = pages * pageSeconds * rate * static_cast<double>(pagingRows.size()),
            .pages = pages,
            .goal = 1.3,
            .againstPeers = false,
            .contenders = {
                pagingContender(plainName, &StraightPager::fetch, path, chain),
                pagingContender(limitName, &StraightPager::page, path, chain),
                pagingContender(kvsigName, &KvsigPager::page, path),
                pagingContender(unfilteredName, &KvsigPager::unfiltered, path),
                pagingContender(channelsOnlyName, &KvsigPager::channelsOnly, path),
            }};
}

} // namespace kvsig::bench
