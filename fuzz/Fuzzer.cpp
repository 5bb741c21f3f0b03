#include "Target.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>

// The fuzzer's program. KVSIG_FUZZ_TARGET names the target.
namespace {

const kvsig::fuzz::Target& chosenTarget() {
    const char* name = std::getenv("KVSIG_FUZZ_TARGET");
    const kvsig::fuzz::Target* target = kvsig::fuzz::findTarget(name ? name : "");
    if (target)
        return *target;
    std::cerr << "KVSIG_FUZZ_TARGET names one of:";
    for (const kvsig::fuzz::Target& known : kvsig::fuzz::targets())
        std::cerr << ' ' << known.name;
    std::cerr << std::endl;
    std::exit(2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kvsig::fuzz::Target& target = chosenTarget();
    target.run({static_cast<const char*>(static_cast<const void*>(data)), size});
    return 0;
}
