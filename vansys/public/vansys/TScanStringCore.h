/// @file
/// TScanStringCore: reading a text item by item.
#pragma once

#include "vansys/Export.h"
#include "vansys/TCodeUnit.h"
#include "vansys/TStringCore.h"
#include "vansys/VantrelExceptionOf.h"
#include "vansys/detail/TwinText.h"

#include <cstdint>
#include <limits>
#include <type_traits>

namespace vansys::detail
{

template <class Integer>
using EnableIfReadable = std::enable_if_t<std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>>;

} // namespace vansys::detail

/// Reads zero-terminated text from left to right:
///
///     TScanStringCore(text).skip(u"size").skipWhitespace().readInt(size).end();
///
/// A cursor stands before the next unit. `skip...` moves it over an item, `read...` also gives the item.
///
/// **Failures.** What is expected and not there is a `TScanStringCore::Exception` with the one message that
/// stands with the function. Reading and measuring may throw what `TStringCore` throws. A function that
/// throws has neither moved the cursor nor changed its output.
///
/// **Ownership.** The text is borrowed: it must live, unchanged, as long as the scanner and its copies. A
/// text ends at its first zero unit, also when it is a `TStringCore`.
///
/// **Other text** than units cannot be borrowed: make a `TStringCore` of it first. Sets and expected text
/// come in any form. The measuring functions take either wide type.
///
/// **Cost.** Each function takes as long as its item is, whatever follows.
///
/// **A null text** is reported by `ThrowLogicException`; with a hook that returns, it is the empty text.
///
/// **Threads.** One scanner belongs to one thread at a time.
class VANSYS_API TScanStringCore
{
public:
    class Exception;

    /// Any of the forms of text; see `TStringCore::Text`. For sets, see there.
    using Text = TStringCore::Text;

    /// Begins at the start of the text.
    explicit TScanStringCore(TStringCore const &text) : TScanStringCore(text.constData()) {}
    explicit TScanStringCore(TCodeUnit const *text);

    TScanStringCore(TStringCore const &&) = delete; ///< would not live long enough; nor does UTF-8 converted
    TScanStringCore(TWideTwin const *) = delete;    ///< see above

    /// The text, from its start.
    TCodeUnit const *str() const noexcept { return m_input; }

    /// How many units lie before the cursor.
    int index() const noexcept { return m_cursor; }

    /// Goes back to the start of the text.
    TScanStringCore &reset();

    // Measuring: the length of the item that the text begins with, in elements of the text. Null is the empty
    // text. The functions for the other wide type may throw "Out of memory" as `TStringCore` does.

    /// Members of the set.
    static int lengthAnyOf(TCodeUnit const *text, Text const &set);

    /// What is no member of the set.
    static int lengthAnyNotOf(TCodeUnit const *text, Text const &set);

    /// Units that are white space (`TCType::isSpace`).
    static int lengthWhitespace(TCodeUnit const *text);

    /// Units that are not.
    static int lengthNonWhitespace(TCodeUnit const *text);

    /// `count` units, or all where there are fewer, or where `count` is negative.
    static int lengthString(TCodeUnit const *text, int count);

    /// What precedes the first LF. A CR in front of the LF is part of the line.
    static int lengthLine(TCodeUnit const *text);

    /// A line end: CR LF, LF CR, LF or CR; or nothing, at the end of the text.
    /// Otherwise fails with "TScanStringCore::lengthNewLine: No new line found.".
    static int lengthNewline(TCodeUnit const *text);

    /// One of the words 1, 0, true, false, yes, no in any case, whatever follows it.
    /// Otherwise fails with "TScanStringCore::lengthBool: Boolean value not found.".
    static int lengthBool(TCodeUnit const *text);

    /// An integer as `TStringCore::leftIntegerLength` measures it, with a sign in base 10 only; also throws
    /// what that throws. Where there is none, fails with "TScanStringCore::lengthInt: Integer value not
    /// found.".
    static int lengthInt(TCodeUnit const *text, int base = 10);

    /// A number as `TStringCore::leftDoubleLength` measures it.
    /// Where there is none, fails with "TScanStringCore::lengthFloat: Float value not found.".
    static int lengthFloat(TCodeUnit const *text);

    static int lengthAnyOf(TWideTwin const *text, Text const &set);
    static int lengthAnyNotOf(TWideTwin const *text, Text const &set);
    static int lengthWhitespace(TWideTwin const *text);
    static int lengthNonWhitespace(TWideTwin const *text);
    static int lengthString(TWideTwin const *text, int count);
    static int lengthLine(TWideTwin const *text);
    static int lengthNewline(TWideTwin const *text);
    static int lengthBool(TWideTwin const *text);
    static int lengthInt(TWideTwin const *text, int base = 10);
    static int lengthFloat(TWideTwin const *text);

    // Skipping: what the function of the same name measures, failing as that does

    TScanStringCore &skipAnyOf(Text const &set) { return advance(lengthAnyOf(rest(), set)); }

    TScanStringCore &skipAnyNotOf(Text const &set) { return advance(lengthAnyNotOf(rest(), set)); }

    TScanStringCore &skipWhitespace() { return advance(lengthWhitespace(rest())); }

    TScanStringCore &skipNonWhitespace() { return advance(lengthNonWhitespace(rest())); }

    TScanStringCore &skipString(int count) { return advance(lengthString(rest(), count)); }

    TScanStringCore &skipLine() { return advance(lengthLine(rest())); }

    TScanStringCore &skipNewline() { return advance(lengthNewline(rest())); }

    TScanStringCore &skipBool() { return advance(lengthBool(rest())); }

    TScanStringCore &skipInt(int base = 10) { return advance(lengthInt(rest(), base)); }

    TScanStringCore &skipFloat() { return advance(lengthFloat(rest())); }

    /// The expected text, to the letter. Otherwise fails with "TScanStringCore::skip: String mismatch.".
    TScanStringCore &skip(Text const &expected);

    // Reading

    TScanStringCore &readAnyOf(TStringCore &out, Text const &set)
    {
        return read(out, lengthAnyOf(rest(), set));
    }

    TScanStringCore &readAnyNotOf(TStringCore &out, Text const &set)
    {
        return read(out, lengthAnyNotOf(rest(), set));
    }

    TScanStringCore &readNonWhitespace(TStringCore &out) { return read(out, lengthNonWhitespace(rest())); }

    TScanStringCore &readString(TStringCore &out, int count)
    {
        return read(out, lengthString(rest(), count));
    }

    /// What precedes the first LF, and with it a CR in front of that; then skips one line end as
    /// `lengthNewline` measures it: LF, or LF CR.
    TScanStringCore &readLine(TStringCore &out);

    /// Whether the word that `lengthBool` measures is 1, true or yes. Fails as that does.
    TScanStringCore &readBool(bool &out);

    /// An integer as `TStringCore::number` writes it, if all its digits are of its base and the type can hold
    /// it: what `lengthInt` measures, and in every base, not in 10 only, with a sign in front of it.
    /// Otherwise fails with
    /// "TScanStringCore::readInt: Integer value not found." or
    /// "TScanStringCore::readInt: Integer value out of range.".
    template <class Integer, class = vansys::detail::EnableIfReadable<Integer>>
    TScanStringCore &readInt(Integer &out, int base = 10)
    {
        using Limits = std::numeric_limits<Integer>;
        using Widest = std::conditional_t<std::is_signed_v<Integer>, long long, unsigned long long>;
        Widest value = 0;
        readInteger(value, Limits::min(), Limits::max(), base);
        out = static_cast<Integer>(value);
        return *this;
    }

    /// A number as `lengthFloat` measures it; what is too large becomes an infinity. Where there is none,
    /// fails with "TScanStringCore::readFloat: Float value not found.".
    TScanStringCore &readFloat(float &out);

    /// The same; fails with "TScanStringCore::readDouble: Float value not found.".
    TScanStringCore &readFloat(double &out);

    /// Succeeds at the end of the text only.
    /// Otherwise fails with "TScanStringCore::end(): Expected null character.".
    TScanStringCore &end();

private:
    TCodeUnit const *rest() const noexcept;
    int cursorBehind(std::int64_t length) const;
    TScanStringCore &advance(int length);
    TScanStringCore &read(TStringCore &out, int length);
    void readInteger(long long &out, long long min, long long max, int base);
    void readInteger(unsigned long long &out, unsigned long long min, unsigned long long max, int base);

    TCodeUnit const *m_input; ///< borrowed
    int m_cursor = 0;
};

/// Something else than what was to be read. Cloned and re-thrown as its own type.
class VANSYS_API TScanStringCore::Exception : public VantrelExceptionOf<TScanStringCore::Exception>
{
public:
    using VantrelExceptionOf::VantrelExceptionOf;

    Exception(Exception const &) = default;
    Exception &operator=(Exception const &) = default;
    ~Exception() override;
};
