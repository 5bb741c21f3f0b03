#include "KvsigPager.h"
#include "Paging.h"
#include "Peers.h"
#include "Questions.h"

#include <memory>
#include <utility>

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

std::vector<Question> pagingQuestions(const Workload& workload) {
    const std::string& path = workload.path;
    const PagingChain chain = KvsigPager(path).chain();
    const StraightFile file(path);
    const double rate = static_cast<double>(file.pointsPerRecord()) / file.recordSeconds();
    const auto pages = static_cast<double>(pagingPages(file.duration()));
    const Contender plain = pagingContender(plainName, &StraightPager::fetch, path, chain);
    const Contender unfiltered = pagingContender(unfilteredName, &KvsigPager::unfiltered, path);
    const Contender channelsOnly =
        pagingContender(channelsOnlyName, &KvsigPager::channelsOnly, path);
    Question rowByRow{.task = "first hour in 10 s pages, 18 bipolar rows, 3 filters, row by row",
                      .workload = workload.name + "  " + workload.what,
                      .values = pages * pageSeconds * rate * static_cast<double>(pagingRows.size()),
                      .pages = pages,
                      .goal = 1.3,
                      .contenders = {plain,
                                     pagingContender(limitName, &StraightPager::page, path, chain),
                                     pagingContender(kvsigName, &KvsigPager::page, path),
                                     unfiltered, channelsOnly}};
    const std::vector<Contender> peers = peerPagers(path, chain);
    rowByRow.contenders.insert(rowByRow.contenders.end(), peers.begin(), peers.end());
    Question allRows = rowByRow;
    allRows.task = "first hour in 10 s pages, 18 bipolar rows, 3 filters, all rows in one call";
    allRows.goal = 1.6;
    allRows.contenders = {
        plain, pagingContender(limitName, &StraightPager::sideBySide, path, chain),
        pagingContender(kvsigName, &KvsigPager::allRows, path), unfiltered, channelsOnly};
    allRows.contenders.insert(allRows.contenders.end(), peers.begin(), peers.end());
    return {std::move(rowByRow), std::move(allRows)};
}

} // namespace kvsig::bench
