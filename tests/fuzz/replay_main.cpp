// Runs a harness, built without the fuzzer, over every file of the folders that are named.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int count, char **arguments)
{
    unsigned int files = 0;
    for (int k = 1; k < count; ++k) {
        for (const auto &entry : std::filesystem::directory_iterator(arguments[k])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
            ++files;
        }
    }
    std::printf("%u inputs\n", files);
    return files ? 0 : 1;  // nothing replayed is nothing tested
}
