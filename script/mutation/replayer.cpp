// Stands in for `vynpt replay FILE [--dump]`, without what the command needs besides.
#include <iostream>
#include <string_view>

#include "replay/Replay.h"

int main(int argc, char** argv) {
    bool const dump = argc > 3 && std::string_view(argv[3]) == "--dump";
    return Replay::runFile(argv[2], std::cout, std::cerr, dump);
}
