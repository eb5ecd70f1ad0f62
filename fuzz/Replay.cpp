// Runs a fuzz target over files: what a fuzzer once found stays found. Takes files and folders as arguments.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size);

namespace
{

std::vector<std::filesystem::path> filesOf(std::filesystem::path const &path)
{
    if (!std::filesystem::is_directory(path))
        return {path};
    std::vector<std::filesystem::path> files;
    for (std::filesystem::directory_entry const &entry : std::filesystem::directory_iterator(path))
        files.push_back(entry.path());
    return files;
}

bool replay(std::filesystem::path const &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
    {
        std::fprintf(stderr, "cannot read %s\n", file.string().c_str());
        return false;
    }
    std::vector<char> const bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    std::fprintf(stderr, "%s\n", file.string().c_str()); // the last one shown is the one that failed
    // A block of exactly this size lets the address sanitizer see reads beyond the end.
    std::vector<std::uint8_t> const data(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(data.data(), data.size());
    return true;
}

} // namespace

int main(int count, char **arguments)
{
    int replayed = 0;
    for (int i = 1; i < count; ++i)
    {
        for (std::filesystem::path const &file : filesOf(arguments[i]))
        {
            if (!replay(file))
                return 1;
            ++replayed;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
