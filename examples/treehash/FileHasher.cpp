#include "FileHasher.h"

#include "Platform.h"

#include <cstddef>

namespace treehash
{

namespace
{

/// Most files fit; and it stays in the second-level cache from the read to the hashing.
constexpr std::size_t BufferSize = 128 * 1024;

/// Counts the file as done, however the hashing ends.
class FileCount
{
public:
    explicit FileCount(Progress &progress) : m_progress(progress) {}

    ~FileCount() { m_progress.AddFile(); }

    FileCount(FileCount const &) = delete;
    FileCount &operator=(FileCount const &) = delete;

private:
    Progress &m_progress;
};

} // namespace

FileHasher::FileHasher(Progress &progress)
    : m_progress(progress),
      m_buffer(std::make_unique_for_overwrite<unsigned char[]>(BufferSize))
{
}

std::string const &FileHasher::Hash(std::string const &name, sha2::SHA_TYPE type)
{
    FileCount const count(m_progress);
    ThrowIfInterrupted();
    InputFile file(name, InputFile::Accept::RegularFiles);
    m_hash.Init(type);
    while (std::size_t const size = file.Read(m_buffer.get(), BufferSize))
    {
        m_hash.Update(m_buffer.get(), static_cast<unsigned int>(size));
        m_progress.AddBytes(size);
        ThrowIfInterrupted();
    }
    file.RequireUnchanged();
    m_hash.End();
    return m_hash.StringHash();
}

} // namespace treehash
