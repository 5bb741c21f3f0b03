#include "tool/CommonOptions.h"

namespace kvsig::tool {

void addFilesArgument(CLI::App& command, std::vector<std::string>& files) {
    command
        .add_option("FILE", files, "Recordings, layouts, and pairs of recordings as 'a.edf*b.bdf'")
        ->required();
}

void addTypeOption(CLI::App& command, std::string& type) {
    command
        .add_option("--type", type, "Kind of recording, in place of detection; see 'kvsig types'")
        ->type_name("TYPE");
}

void addQuietFlag(CLI::App& command, bool& quiet) {
    command.add_flag("-q,--quiet", quiet, "No remarks, only warnings and errors");
}

} // namespace kvsig::tool
