#include "Reading.h"

#include "Peers.h"

#include <utility>

namespace kvsig::bench {

std::vector<Reader> readers() {
    std::vector<Reader> all{
        {plainName, openPlain}, {limitName, openStraight}, {kvsigName, openKvsig}};
    for (const Reader& peer : peerReaders())
        all.push_back(peer);
    return all;
}

std::vector<Contender> contenders(const std::string& path, std::function<void(Reading&)> run) {
    std::vector<Contender> all;
    for (const Reader& reader : readers())
        all.push_back({reader.name, [reader, path, run] {
                           const std::shared_ptr<Reading> reading = reader.open(path);
                           return Work{.run = [reading, run] { run(*reading); },
                                       .callerBytes = [reading] { return reading->callerBytes(); }};
                       }});
    return all;
}

} // namespace kvsig::bench
