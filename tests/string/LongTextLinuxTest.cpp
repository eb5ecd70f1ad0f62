// Text that is longer than an `int` can say, without the memory: the pages of one small file are mapped over
// and over, one behind the other.

#include "vansys/TStringCore.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

constexpr std::size_t PieceSize = std::size_t{4} << 20;
constexpr std::size_t TextSize = std::size_t{1} << 31; // INT_MAX bytes and one more
constexpr std::size_t MappedSize = TextSize + 4096;    // a page behind the text is anonymous, and so zero

} // namespace

TEST(LongText, IsRefusedAndTheStringIsAsItWas)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer keeps a record of each byte read";
#endif
    int const file = memfd_create("text", 0);
    ASSERT_NE(file, -1);
    std::string const piece(PieceSize, 'x');
    ASSERT_EQ(write(file, piece.data(), PieceSize), static_cast<ssize_t>(PieceSize));
    void *const memory =
        mmap(nullptr, MappedSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    char *const text = static_cast<char *>(memory);
    for (std::size_t at = 0; at < TextSize; at += PieceSize)
        ASSERT_NE(mmap(text + at, PieceSize, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0), MAP_FAILED);
    close(file);

    TStringCore string = u"text";
    try
    {
        string.append(text);
        ADD_FAILURE() << "nothing was thrown";
    }
    catch (TStringCore::Exception const &exception)
    {
        EXPECT_EQ(exception.GetConcatenatedMessages(), u"Appended string is too long");
    }
    EXPECT_THROW(string = text, TStringCore::Exception);
    EXPECT_EQ(string, u"text");
    munmap(memory, MappedSize);
}
