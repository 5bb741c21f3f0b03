#include "Target.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

// Prints the targets, one a line with the name of its dictionary; with a folder given, writes each
// target's seeds into a folder of its name there.
int main(int count, char** arguments) {
    namespace fs = std::filesystem;
    for (const kvsig::fuzz::Target& target : kvsig::fuzz::targets()) {
        std::cout << target.name << ' ' << target.dictionary << '\n';
        if (count < 2)
            continue;
        const fs::path folder = fs::path(arguments[1]) / target.name;
        fs::create_directories(folder);
        int number = 0;
        for (const std::string& seed : target.seeds) {
            std::ofstream file(folder / ("seed-" + std::to_string(++number)), std::ios::binary);
            if (!file.write(seed.data(), static_cast<std::streamsize>(seed.size())).flush())
                return 1;
        }
    }
    return 0;
}
