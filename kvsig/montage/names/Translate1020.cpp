#include "kvsig/montage/names/Translate1020.h"

#include "kvsig/util/Text.h"

namespace kvsig {
namespace {

struct NamePair {
    char oldLetter, oldDigit;
    char newLetter, newDigit;
};

constexpr NamePair pairs[] = {
    {'T', '3', 'T', '7'}, {'T', '4', 'T', '8'}, {'T', '5', 'P', '7'}, {'T', '6', 'P', '8'}};

bool translate(char* name, bool toNew) {
    for (const NamePair& pair : pairs) {
        if (toNew && name[0] == pair.oldLetter && name[1] == pair.oldDigit) {
            name[0] = pair.newLetter;
            name[1] = pair.newDigit;
            return true;
        }
        if (!toNew && name[0] == pair.newLetter && name[1] == pair.newDigit) {
            name[0] = pair.oldLetter;
            name[1] = pair.oldDigit;
            return true;
        }
    }
    return false;
}

} // namespace

int Translate1020To1010Names(char* first, char* last, bool toNew) {
    if (!first || !last)
        return 0;
    int changed = 0;
    for (char* p = first; last - p >= 2; ++p) {
        const bool startsHere = p == first || !isLetterOrDigit(p[-1]);
        if (startsHere && !isLetterOrDigit(p[2]) && translate(p, toNew))
            ++changed;
    }
    return changed;
}

} // namespace kvsig
