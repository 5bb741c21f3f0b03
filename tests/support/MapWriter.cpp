#include "kvsig/kernel/ChannelMap.h"

#include <filesystem>
#include <sstream>
#include <string>

// Rewrites the channel map "Map" of a directory's map file with one line and with many, in turn,
// until it is killed or fails.
int main(int count, char** arguments) {
    if (count != 2)
        return 2;
    std::filesystem::current_path(arguments[1]);
    std::string many;
    for (int i = 1; i <= 4000; ++i)
        many += "E" + std::to_string(i) + "-Ref=" + std::to_string(i) + "\n";
    for (;;) {
        std::istringstream one("Cz-Ref=1\n"), all(many);
        if (!kvsig::storeChannelMap("Map", one) || !kvsig::storeChannelMap("Map", all))
            return 1;
    }
}
