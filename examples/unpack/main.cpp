/// @file
/// unpack: makes files below a folder, whose names are those of a stranger's list, and reads them back.
///
///     unpack FOLDER <LIST
///
/// Each line of the list is a name, with either slash between its parts, a tab, and what the file is to hold.
/// Names that would lead out of the folder, here or on another system, are refused, and the exit status is 1
/// then.
#include "OpenFile.h"

#include <vansys/TPathCore.h>
#include <vansys/TPathCoreFilesystem.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

namespace
{

struct CloseFile
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

/// Through a stream of the standard library, which takes its own kind of path on every system.
void Write(TPathCore const &path, std::string_view content)
{
    std::filesystem::create_directories(PathToFilesystem(path).parent_path());
    std::ofstream stream(PathToFilesystem(path), std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!stream.flush())
        throw TPathCore::Exception(u"Cannot be written", false);
}

/// Through a stream of C.
std::string Read(TPathCore const &path)
{
    std::unique_ptr<std::FILE, CloseFile> const file(unpack::OpenForReading(path));
    if (!file)
        throw TPathCore::Exception(u"Cannot be read", false);
    std::string content;
    for (int byte = std::fgetc(file.get()); byte != EOF; byte = std::fgetc(file.get()))
        content += static_cast<char>(byte);
    return content;
}

/// Returns whether all went well.
bool Unpack(TPathCore const &folder, std::string_view name, std::string_view content)
{
    try
    {
        // Names in a list are bytes, which need not be UTF-8; both slashes separate, whatever the system.
        std::string slashes(name);
        for (char &byte : slashes)
            byte = byte == '\\' ? '/' : byte;
        TPathCore const relative = TPathCore::fromNativeBytes(slashes);
        TPathCore const path = TPathCore::SafeJoin(folder, relative.GenericString());
        Write(path, content);
        std::cout << name << ": " << Read(path).size() << " bytes\n";
        return true;
    }
    catch (TPathCore::Exception const &exception)
    {
        std::cout << name << ": " << exception.GetMessagesFront().toStdString() << '\n';
    }
    catch (std::filesystem::filesystem_error const &error)
    {
        std::cout << name << ": " << error.code().message() << '\n';
    }
    return false;
}

} // namespace

int main(int count, char **arguments)
{
    if (count != 2)
    {
        std::cerr << "Usage: unpack FOLDER <LIST\n";
        return 2;
    }
    TPathCore const folder = PathFromFilesystem(arguments[1]);
    bool isGood = true;
    for (std::string line; std::getline(std::cin, line);)
    {
        std::size_t const tab = std::min(line.find('\t'), line.size());
        isGood &= Unpack(folder, line.substr(0, tab), line.substr(std::min(tab + 1, line.size())));
    }
    return isGood ? 0 : 1;
}
