#include "kvsig/util/Terminal.h"

#include <unistd.h>

namespace kvsig {

bool errorStreamIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

} // namespace kvsig
