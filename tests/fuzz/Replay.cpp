// Tries the inputs in the folder that is named on the command line, in place of libFuzzer.

#include "tests/fuzz/Fuzz.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

int main(int argc, char** argv) {
    fuzz::require(argc == 2, "a folder of inputs is named");
    const std::filesystem::directory_iterator folder{argv[1]};
    const std::set<std::filesystem::path> inputs{begin(folder), end(folder)};
    fuzz::require(!inputs.empty(), "the folder holds inputs");
    for (const std::filesystem::path& input : inputs) {
        std::ifstream file{input, std::ios::binary};
        const std::string bytes{std::istreambuf_iterator{file}, {}};
        std::printf("%s\n", input.c_str());
        std::fflush(stdout); // should this input end the process, it is the last one named
        fuzz::check(bytes);
    }
    return EXIT_SUCCESS;
}
