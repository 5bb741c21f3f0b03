#include "kvsig/registry/types/FormatFactories.h"

namespace kvsig {
namespace {

template <typename... Factories>
std::vector<std::unique_ptr<DRFactory>> oneOfEach() {
    std::vector<std::unique_ptr<DRFactory>> all;
    (all.push_back(std::make_unique<Factories>()), ...);
    return all;
}

} // namespace

std::vector<std::unique_ptr<DRFactory>> formatFactories() {
    return oneOfEach<CompumedicsFactory, ProFusionEEG4Factory, NeuroscanFactory,
                     TelefactorEDFFactory, BDFFactory, EndeavorFactory, NicOneFactory, TwinFactory,
                     NervusFactory, NervusFactory2, DeymedFactory, CyberkineticsFactory,
                     BlackrockFactory, PolymateFactory, BrainRTFactory, RembrandtFactory,
                     BPFFactory, Easy3Factory, RMSIndiaFactory, DeltamedFactory,
                     CardinalNicOneFactory, CNSMonitorFactory, MEFFactory, HarmonieFactory>();
}

} // namespace kvsig
