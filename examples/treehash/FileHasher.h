/// @file
/// The digest of one file after the other.
#pragma once

#include "Progress.h"

#include <vansys/sha2.h>

#include <memory>
#include <string>

namespace treehash
{

/// Reads through one buffer, which is all the memory that a file takes, however large it is.
class FileHasher
{
public:
    explicit FileHasher(Progress &progress);

    /// The digest in lowercase hexadecimal digits, valid until the next call.
    /// Throws a `VantrelException` with the reason when the file cannot be read, is no regular file, or is
    /// changed meanwhile. Throws `Interrupted`.
    std::string const &Hash(std::string const &name, sha2::SHA_TYPE type);

private:
    Progress &m_progress;
    std::unique_ptr<unsigned char[]> m_buffer;
    sha2 m_hash;
};

} // namespace treehash
