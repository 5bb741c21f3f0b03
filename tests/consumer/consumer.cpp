// A stranger's program: opens a recording through the library alone.
#include <iostream>
#include <kvsig/kvsig.h>

int main(int argc, char** argv) {
    std::string error;
    const kvsig::ReaderPtr reader = kvsig::openReader(argc > 1 ? argv[1] : "", 0, &error);
    if (!reader) {
        std::cerr << error << "\n";
        return 1;
    }
    kvsig::SourceMontage montage;
    montage.setReader(reader.get());
    if (!montage.createMontage("Double banana"))
        std::cerr << "no double banana\n";
    std::cout << reader->channelCount() << " channels, " << montage.sourceCount() << " rows\n";
}
