#pragma once

#include "kvsig/registry/types/FormatFactory.h"

#include <memory>
#include <vector>

/// The factory classes of the formats that are not built into the registry; each is the record of
/// one row of the type table.
namespace kvsig {

// clang-format off
struct CompumedicsFactory final : FormatFactory {
    CompumedicsFactory() : FormatFactory("Compumedics (*.raw)") {}
};
struct ProFusionEEG4Factory final : FormatFactory {
    ProFusionEEG4Factory() : FormatFactory("Compumedics_(Pro_4) (*.sdy)") {}
};
struct NeuroscanFactory final : FormatFactory {
    NeuroscanFactory() : FormatFactory("Neuroscan (*.cnt)") {}
};
struct TelefactorEDFFactory final : FormatFactory {
    TelefactorEDFFactory() : FormatFactory("TelefactorEDF (*.edf)") {}
};
struct BDFFactory final : FormatFactory { BDFFactory() : FormatFactory("BDF (*.bdf)") {} };
struct EndeavorFactory final : FormatFactory {
    EndeavorFactory() : FormatFactory("Endeavor 3.x (*.xew)") {}
};
struct NicOneFactory final : FormatFactory {
    NicOneFactory() : FormatFactory("NicoletOne cEEG(*.one)") {}
};
struct TwinFactory final : FormatFactory { TwinFactory() : FormatFactory("Twin (Logfile.qqq)") {} };
struct NervusFactory final : FormatFactory { NervusFactory() : FormatFactory("Nervus (*.e)") {} };
struct NervusFactory2 final : FormatFactory {
    NervusFactory2() : FormatFactory("NicoletOne nEEG/LTM/Monitor (*.e)") {}
};
struct DeymedFactory final : FormatFactory { DeymedFactory() : FormatFactory("Deymed (*.dat)") {} };
struct CyberkineticsFactory final : FormatFactory {
    CyberkineticsFactory() : FormatFactory("Cyberkinetics (*.toc)") {}
};
struct BlackrockFactory final : FormatFactory {
    BlackrockFactory() : FormatFactory("Blackrock (*.ns*)") {}
};
struct PolymateFactory final : FormatFactory {
    PolymateFactory() : FormatFactory("Polymate (*.dat)") {}
};
struct BrainRTFactory final : FormatFactory {
    BrainRTFactory() : FormatFactory("BrainRT (*-hdr.sig)") {}
};
struct RembrandtFactory final : FormatFactory {
    RembrandtFactory() : FormatFactory("Rembrandt (*.msr)") {}
};
struct BPFFactory final : FormatFactory { BPFFactory() : FormatFactory("BioSignal (*.bpf)") {} };
struct Easy3Factory final : FormatFactory {
    Easy3Factory() : FormatFactory("Easy3 (* - 1.ez3)") {}
};
struct RMSIndiaFactory final : FormatFactory {
    RMSIndiaFactory() : FormatFactory("RMSIndia EEG-64 (*.eeg)") {}
};
struct DeltamedFactory final : FormatFactory {
    DeltamedFactory() : FormatFactory("Deltamed (*_0000.eeg)") {}
};
struct CardinalNicOneFactory final : FormatFactory {
    CardinalNicOneFactory() : FormatFactory("CardinalNicOne (*.e)") {}
};
struct CNSMonitorFactory final : FormatFactory {
    CNSMonitorFactory() : FormatFactory("CNSMonitor (EEG,Composite,SampleSeries,*,data)") {}
};
struct MEFFactory final : FormatFactory { MEFFactory() : FormatFactory("MEF (*.maf)") {} };
struct HarmonieFactory final : FormatFactory {
    HarmonieFactory() : FormatFactory("Harmonie (*.sig)") {}
};
// clang-format on

/// One of each, in the order of registration.
[[nodiscard]] std::vector<std::unique_ptr<DRFactory>> formatFactories();

} // namespace kvsig
