// The command `vynpt`.
#include "cli/Command.h"

int main(int argc, char** argv) {
    return Cli::runCommand(argc, argv);
}
