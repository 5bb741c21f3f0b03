// Fills in a page from the command's options: kvsig_pages man|bash|zsh PATTERN PAGE.
#include "tool/CommandLine.h"
#include "tool/pages/Pages.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>

int main(int argc, char** argv) {
    using namespace kvsig::tool;
    const std::map<std::string, std::string (*)(const CLI::App&, std::string)> pages{
        {"man", manPage}, {"bash", bashCompletion}, {"zsh", zshCompletion}};
    if (argc != 4 || !pages.contains(argv[1]))
        return 2;
    try {
        CLI::App app;
        int exitCode = 0;
        defineCommandLine(app, exitCode);
        std::ifstream pattern(argv[2]);
        std::ofstream page(argv[3]);
        page << pages.at(argv[1])(app, {std::istreambuf_iterator<char>(pattern), {}});
        return page.flush() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << argv[3] << ": " << error.what() << "\n";
        return 1;
    }
}
