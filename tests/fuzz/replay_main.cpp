// The fuzz targets' main outside a fuzzing build: replays every input of the given files
// and directories (a committed seed corpus) once, in name order, and fails when it found
// none. A crash, an abort or a sanitizer report ends the run, as under the fuzzer.
#include <dirent.h>
#include <stdio.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz_support.h"

namespace {

void collect(const std::string& path, std::vector<std::string>* out) {
    struct stat st {};
    if (stat(path.c_str(), &st) != 0) return;
    if (!S_ISDIR(st.st_mode)) {
        out->push_back(path);
        return;
    }
    DIR* dir = opendir(path.c_str());
    if (dir == nullptr) return;
    std::vector<std::string> names;
    while (dirent* e = readdir(dir)) {
        if (e->d_name[0] != '.') names.push_back(path + "/" + e->d_name);
    }
    closedir(dir);
    std::sort(names.begin(), names.end());
    for (const std::string& n : names) collect(n, out);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> inputs;
    for (int i = 1; i < argc; ++i) collect(argv[i], &inputs);
    for (const std::string& path : inputs) {
        std::ifstream in(path, std::ios::binary);
        std::vector<uint8_t> data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
    printf("replayed %zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
