#include "kvsig/readers/TelefactorEDFReader.h"

#include "kvsig/util/Text.h"

#include <string>

namespace kvsig {

// The label of the file signal with the channel's own number, on purpose: annotation signals before
// it are not skipped here.
const char* TelefactorEDFReader::_channelName(int channel) {
    thread_local char name[labelSize];
    const std::vector<std::string> words = splitWords(signalLabel(channel), ' ');
    copyText(name, words.empty() ? std::string() : words.front());
    return name;
}

} // namespace kvsig
