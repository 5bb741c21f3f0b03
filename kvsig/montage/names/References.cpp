#include "kvsig/montage/names/References.h"

#include "kvsig/util/Text.h"

namespace kvsig {

const char* const gpszDefRefList[] = {"Cz", "Pz", "A1A2", "A1", "A2", "Av17", "Av12", nullptr};

// Av17: the classic 10-20 scalp set less Fp1 and Fp2. Av12 drops the midline, F7 and F8 as well.
const AvgRefDefn gGlobalAvgRefs[] = {
    {"A1A2", "A1+A2"},
    {"Av17", "F7+F3+Fz+F4+F8+T3+C3+Cz+C4+T4+T5+P3+Pz+P4+T6+O1+O2"},
    {"Av12", "F3+F4+T3+C3+C4+T4+T5+P3+P4+T6+O1+O2"},
    {nullptr, nullptr},
};

int IndexOfDefRef(const char* name) {
    for (int i = 0; gpszDefRefList[i]; ++i)
        if (equalNoCase(viewOf(name), gpszDefRefList[i]))
            return i;
    return -1;
}

} // namespace kvsig
