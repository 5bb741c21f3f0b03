#include "kvsig/readers/TelefactorEDFReader.h"

#include "kvsig/util/Text.h"

#include <string>

namespace kvsig {

// The label of the file signal with the channel's own number, on purpose: annotation signals before
// it are not skipped here.
const char* TelefactorEDFReader::_channelName(int channel) {
    thread_local std::string name;
    const std::vector<std::string> words = splitWords(signalLabel(channel), ' ');
    name = words.empty() ? "" : words.front();
    return name.c_str();
}

} // namespace kvsig
