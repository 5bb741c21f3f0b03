#include "Workspace.h"

#include "kvsig/registry/types/FileTypes.h"
#include "kvsig/util/LogSink.h"

#include <cstdlib>
#include <filesystem>
#include <set>
#include <system_error>

namespace kvsig::fuzz {

namespace fs = std::filesystem;

Workspace& Workspace::get() {
    static Workspace workspace;
    return workspace;
}

Workspace::Workspace() {
    fs::current_path(m_dir.path());
    // The user's own montages are none of an input's business.
    ::setenv("XDG_CONFIG_HOME", m_dir.file("config").c_str(), 1);
    // All types, XML layouts with them.
    KrnlSetFileTypeFlag(4);
    // Messages are made, then dropped: putting them together is part of the work.
    SetLogSink([](int, const char*) {});
}

std::string Workspace::write(std::string_view name, std::string_view bytes) {
    return m_dir.write(name, bytes);
}

void Workspace::clear() const {
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_dir.path(), ignored))
        fs::remove_all(entry.path(), ignored);
}

WrittenInput::WrittenInput(std::string_view input, std::string_view fileName) {
    Workspace& workspace = Workspace::get();
    std::string opened;
    std::set<std::string> others;
    for (const InputFile& file : splitInput(input)) {
        if (file.name.empty())
            path = workspace.write(fileName, file.bytes);
        else if (file.name == attributesName)
            attributes = file.bytes;
        else if (file.name == openedName)
            opened = file.bytes;
        else if (file.name != fileName)
            others.insert(workspace.write(file.name, file.bytes));
    }
    if (others.contains(workspace.path(opened)))
        path = workspace.path(opened);
}

WrittenInput::~WrittenInput() { Workspace::get().clear(); }

} // namespace kvsig::fuzz
