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
constexpr std::size_t Pieces = (std::size_t{1} << 31) / PieceSize; // INT_MAX bytes and one more

/// 2^31 bytes 'x' and a terminator.
class LongText : public testing::Test
{
protected:
    void SetUp() override
    {
#if defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "the sanitizer keeps a record of each byte read";
#endif
        int const file = memfd_create("text", 0);
        ASSERT_NE(file, -1);
        std::string const piece(PieceSize, 'x');
        ASSERT_EQ(write(file, piece.data(), PieceSize), static_cast<ssize_t>(PieceSize));
        // Behind the text there is one anonymous page, which is zero.
        m_memory = mmap(nullptr, Size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        ASSERT_NE(m_memory, MAP_FAILED);
        for (std::size_t i = 0; i < Pieces; ++i)
            ASSERT_NE(mmap(text() + i * PieceSize, PieceSize, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0),
                      MAP_FAILED);
        close(file);
    }

    void TearDown() override
    {
        if (m_memory != MAP_FAILED)
            munmap(m_memory, Size);
    }

    char *text() const
    {
        return static_cast<char *>(m_memory);
    }

private:
    static constexpr std::size_t Size = Pieces * PieceSize + 4096;
    void *m_memory = MAP_FAILED;
};

} // namespace

TEST_F(LongText, IsRefusedAndTheStringIsAsItWas)
{
    TStringCore string = u"text";
    try
    {
        string.append(text());
        FAIL() << "nothing was thrown";
    }
    catch (TStringCore::Exception const &exception)
    {
        EXPECT_EQ(exception.GetConcatenatedMessages(), u"Appended string is too long");
    }
    EXPECT_THROW(string = text(), TStringCore::Exception);
    EXPECT_EQ(string, u"text");
}
