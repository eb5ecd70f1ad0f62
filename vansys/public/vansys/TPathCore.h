/// @file
/// TPathCore: a path of a file system, as text.
///
/// | what                          | here                                                                  |
/// |-------------------------------|-----------------------------------------------------------------------|
/// | systems                       | the rules are those of Windows, on every system                       |
/// | what it holds                 | text and nothing else; as large as one `TStringCore`                  |
/// | the disk                      | is never touched, but by `NativeLongPath` and `NativeShortPath`       |
/// | separator inside              | "/": the generic form; every constructor makes it of back slashes     |
/// | separator of the native form  | back slash, on every system                                           |
/// | comparison                    | disregards case, on every system                                      |
/// | what may be in a path         | any text, zero units and lone surrogates too; nothing is refused      |
/// | encoding                      | UTF-16; narrow text is UTF-8                                          |
#pragma once

#include "vansys/Export.h"
#include "vansys/Forward.h"
#include "vansys/TCodeUnit.h"
#include "vansys/TStringCore.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vansys::detail
{
class PathAccess;
}

/// A path: pure text, which is asked about its parts and put together from parts.
///
/// No parsed structure is kept. Each question scans the text, and costs as many steps as there are units in
/// it at most.
///
/// **Generic form.** Every constructor, `fromWindows` and `fromVector` replace each back slash by "/" and
/// remove one "/" at the end, unless the whole path is its own root path:
///
/// | text         | path     |   | text        | path      |
/// |--------------|----------|---|-------------|-----------|
/// | `C:\dir\`    | `C:/dir` |   | `/`         | `/`       |
/// | `C:\`        | `C:/`    |   | `\\?\C:\`   | `//?/C:/` |
/// | `a//`        | `a/`     |   | `\\srv\`    | `//srv/`  |
///
/// What appends text does not remove a "/" at the end; each question takes such a path as well. `Swap` leaves
/// its argument in the native form.
///
/// **Parts.** Each row is what the members give that are named above it; "-" is the empty path or text:
///
/// | path            | RootName     | RootDirectory | Parent        | Filename   | Stem       | Extension |
/// |-----------------|--------------|---------------|---------------|------------|------------|-----------|
/// | `C:/d/f.tar.gz` | `C:`         | `/`           | `C:/d`        | `f.tar.gz` | `f.tar`    | `gz`      |
/// | `C:/dir`        | `C:`         | `/`           | `C:/`         | `dir`      | `dir`      | -         |
/// | `C:/`           | `C:`         | `/`           | `C:`          | -          | -          | -         |
/// | `C:`            | `C:`         | -             | -             | -          | -          | -         |
/// | `C:b`           | `C:`         | -             | `C`           | `b`        | `b`        | -         |
/// | `/b`            | -            | `/`           | `/`           | `b`        | `b`        | -         |
/// | `/`             | -            | `/`           | -             | -          | -          | -         |
/// | `a`             | -            | -             | -             | `a`        | `a`        | -         |
/// | `a/.profile`    | -            | -             | `a`           | `.profile` | `.profile` | -         |
/// | `//srv/dir/f`   | `//srv`      | `/`           | `//srv/dir`   | `f`        | `f`        | -         |
/// | `//srv`         | `//srv`      | -             | `/`           | `srv`      | `srv`      | -         |
/// | `//?/C:/x`      | `//?/C:`     | `/`           | `//?/C:/`     | `x`        | `x`        | -         |
/// | `//?/UNC/s/d`   | `//?/UNC/s`  | `/`           | `//?/UNC/s/`  | `d`        | `d`        | -         |
///
/// **Kinds of paths.**
///
/// | path                | absolute | relative | UNC | extended | share name | object name |
/// |---------------------|----------|----------|-----|----------|------------|-------------|
/// | `C:/x`              | yes      | no       | no  | no       | -          | -           |
/// | `C:x`               | no       | yes      | no  | no       | -          | -           |
/// | `/x`                | no       | no       | no  | no       | -          | -           |
/// | `x`                 | no       | yes      | no  | no       | -          | -           |
/// | `//srv/share/x/y`   | yes      | no       | yes | no       | `share`    | `/x/y`      |
/// | `//srv//share`      | yes      | no       | yes | no       | -          | `/share`    |
/// | `//srv`             | no       | yes      | yes | no       | -          | `//srv`     |
/// | `//?/C:/x`          | yes      | no       | no  | yes      | -          | -           |
/// | `//?/unc/srv/c$`    | yes      | no       | yes | yes      | `c$`       | -           |
///
/// **Oddities**, which programs rely on:
/// - "/x" is neither absolute nor relative.
/// - `HasStem` of a single relative name ("readme.txt") is false, although `Stem` gives one.
/// - The first ":" anywhere in the path ends what is not looked at for the file name: that of "a/b:c" is "c".
/// - To remove the file name of "C:b" leaves "C", and that of "//srv" leaves "/".
/// - `HasFilename` is true of a path that ends with "/" behind a name: its file name is the empty one.
/// - `Swap` leaves the other path in the native form, in which it has no separators, until it is rebuilt.
/// - `<` respects case, and `==` does not. For ordered containers, see `PathLess`.
///
/// **Failures.** Questions do not throw, but for those that give text, where memory runs out
/// (`TStringCore::Exception`). What changes a path leaves it as it was when it throws.
///
/// **Threads.** As for a string: one object belongs to one thread at a time; copies are independent.
class VANSYS_API TPathCore
{
public:
    class Exception;
    class iterator;

    using const_iterator = iterator;
    using value_type = TStringCore;

    // Construction and conversion

    /// The empty path.
    TPathCore() noexcept = default;
    TPathCore(std::nullptr_t) noexcept {}

    /// The text, made generic. A string that needs no change is shared; one that is moved from and that
    /// nobody shares is changed in place.
    TPathCore(TStringCore const &text);
    TPathCore(TStringCore &&text);

    /// Zero-terminated text, wide or UTF-8, made generic. Null is the empty text.
    TPathCore(TCodeUnit const *text);
    TPathCore(TWideTwin const *text) : TPathCore(TStringCore(text)) {}
    TPathCore(char const *utf8) : TPathCore(TStringCore(utf8)) {}

    TPathCore(TPathCore const &) noexcept = default;
    TPathCore(TPathCore &&) noexcept = default;
    TPathCore &operator=(TPathCore const &) noexcept = default;
    TPathCore &operator=(TPathCore &&) noexcept = default;
    ~TPathCore() = default;

    TPathCore &Assign(TPathCore const &other) noexcept { return *this = other; }

    /// The same as the constructor from a string.
    static TPathCore fromWindows(TStringCore const &text) { return TPathCore(text); }

    /// Appends, to an empty path, a path of each element in turn: {"C:", "\\", "a"} gives "C:/a".
    static TPathCore fromVector(std::vector<TStringCore> const &elements);

    /// The elements, from `begin` to `end`. Throws `std::bad_alloc`, too.
    std::vector<TStringCore> toVector() const;

    /// The text as it is held, with "/".
    TStringCore GenericString() const noexcept { return m_text; }

    /// The text with back slashes, on every system.
    TStringCore NativeString() const;
    operator TStringCore() const { return NativeString(); }

    /// The native text with each name in its long form, or in its short (8.3) form, as the disk has it. What
    /// does not exist stays as it is, below the last folder that does. Empty when the path is empty, and when
    /// the system refuses to answer for another reason than that something does not exist.
    ///
    /// Windows asks with the extended-length prefix, which it takes to mean a full path: relative paths and
    /// paths of shares ("//srv/share") give what it answers to that.
    ///
    /// On Linux there are no short names: the text stays as it is, or is empty where the system refuses to
    /// say whether there is such a file (no permission to search a folder, a name that is too long, ...).
    TStringCore NativeLongPath() const;
    TStringCore NativeShortPath() const;

    /// Gives this path the other's text, and the other path this one's in its native form, with back slashes:
    /// it is not generic until it is rebuilt. Of a path with itself, makes it native. To exchange two paths
    /// as they are, use `std::swap`.
    void Swap(TPathCore &other);

    void Clear() noexcept { m_text.clear(); }

    bool IsEmpty() const noexcept { return m_text.isEmpty(); }
    bool empty() const noexcept { return m_text.isEmpty(); }

    // Elements: the root name, the root directory, and each name between separators. "C:/a//b" has the
    // elements "C:", "/", "a" and "b". See TPathCoreIterator.h.

    /// The number of elements.
    int size() const noexcept;

    /// The elements as views, for walking in either direction: quicker than the iterators, which copy each.
    /// They refer to this path, which must not be a temporary one.
    inline PathElements Elements() const &noexcept; // in PathElements.h
    PathElements Elements() const && = delete;

    iterator begin() const;
    iterator end() const;

    /// The first element. Empty when the path is.
    TStringCore front() const;

    /// The last element. Of an empty path, throws `Exception` "TPathCore::iterator trying to decrement beyond
    /// beginning.".
    TStringCore back() const;

    // Composition

    /// Joins with a "/" in between, unless one of both is empty, this one ends with "/", or the other begins
    /// with "/". The other's text is appended as it is, root name and all:
    ///
    /// | path  | other | result |   | path | other  | result  |
    /// |-------|-------|--------|---|------|--------|---------|
    /// | `a`   | `b`   | `a/b`  |   | -    | `b`    | `b`     |
    /// | `a/`  | `b`   | `a/b`  |   | `C:` | `b`    | `C:/b`  |
    /// | `a`   | `/b`  | `a/b`  |   | `a`  | `C:/b` | `a/C:/b` |
    TPathCore &Append(TPathCore const &other);
    TPathCore &operator/=(TPathCore const &other) { return Append(other); }

    TPathCore operator/(TPathCore const &other) const &;
    TPathCore operator/(TPathCore const &other) &&;

    /// Appends the other's text as it is: "a" and "b" give "ab".
    TPathCore &Concat(TPathCore const &other);
    TPathCore &operator+=(TPathCore const &other) { return Concat(other); }

    /// A copy, and behind it the other's text. Text is made a path first, which replaces its back slashes and
    /// removes one "/" at its end: "a" + "b\\" is "ab", and "a" + '\\' is "a/".
    TPathCore operator+(TPathCore const &other) const;
    TPathCore operator+(TStringCore const &text) const { return *this + TPathCore(text); }
    TPathCore operator+(TCodeUnit const *text) const { return *this + TPathCore(text); }
    TPathCore operator+(TWideTwin const *text) const { return *this + TPathCore(text); }
    TPathCore operator+(char const *utf8) const { return *this + TPathCore(utf8); }

    template <class Character, class = vansys::detail::EnableIfCharacter<Character>>
    TPathCore operator+(Character unit) const
    {
        return *this + TPathCore(TStringCore(unit, 1));
    }

    // Root

    /// "C:", "//srv", "//?/C:", "//?/UNC/srv"; empty when there is none.
    TPathCore RootName() const;
    bool HasRootName() const noexcept { return RootNameLength() > 0; }

    /// "/" when there is one behind the root name, or at the front where there is no root name; else empty.
    TPathCore RootDirectory() const;
    bool HasRootDirectory() const noexcept { return RootDirectoryIndex() >= 0; }

    /// The root name, and the root directory appended.
    TPathCore RootPath() const;
    bool HasRootPath() const noexcept { return HasRootName() || HasRootDirectory(); }

    /// Whether there are both a root name and a root directory.
    bool IsAbsolute() const noexcept { return RootDirectoryIndex() > 0; }

    /// Whether there is no root directory.
    bool IsRelative() const noexcept { return RootDirectoryIndex() < 0; }

    // Names

    /// What follows the last "/", or the first ":" when that comes later.
    TPathCore Filename() const;
    bool HasFilename() const noexcept { return FilenameIndex() >= 0; }

    /// What follows the last "." of the file name, dots at its front aside. "a." has an extension, which is
    /// empty; ".profile" and ".." have none.
    TStringCore Extension() const;
    bool HasExtension() const noexcept { return ExtensionIndex() >= 0; }

    /// The file name without its extension and the dot.
    TPathCore Stem() const;

    /// Whether there is a file name that does not begin the path.
    bool HasStem() const noexcept;

    /// The path without its file name; without a file name, the path without its root directory, or nothing.
    TPathCore Parent() const;
    bool HasParentPath() const noexcept;

    /// Whether the file name is "." or "..".
    bool IsDots() const noexcept;

    // Kinds

    /// Whether the path begins with "//?/".
    bool IsExtendedLength() const noexcept;

    /// Whether the path begins with "//" and more, which is not "?", or with "//?/UNC/" in any case of
    /// letters.
    bool IsUNC() const noexcept;

    /// Of a UNC path, what is between the root directory and the next "/". Empty without a root directory.
    TStringCore UNCShareName() const;

    /// Of a UNC path, what follows the share name, the "/" included. Without a root directory, the whole
    /// path.
    TStringCore UNCObjectName() const;
    bool HasUNCObjectName() const noexcept { return IsUNC() && UNCObjectNameIndex() >= 0; }

    /// Whether the share name is a letter and "$".
    bool IsAdminShare() const noexcept;

    /// The letter of an administrative share, else 0xFFFF.
    TCodeUnit AdminShareDriveLetter() const noexcept;

    // Editing

    /// Removes the file name and the separator before it, unless that is the root directory. "C:b" becomes
    /// "C", and "//srv" becomes "/".
    TPathCore &RemoveFilename();

    /// Removes the extension and its dot.
    TPathCore &RemoveExtension();

    /// Removes the extension, and then appends a dot and the new one, which is given without a dot. An empty
    /// one only removes.
    TPathCore &ReplaceExtension(TStringCore const &extension);

    // How paths lie to each other, told by their text alone: links on the disk are not followed.

    /// The path without what says nothing: doubled separators, ".", a ".." with the name that it leads out
    /// of, ".." right behind the root directory, and a separator at the end that is not the root directory. A
    /// server's share is to its folders what a drive is, and no ".." leads out of it. What is left of nothing
    /// but such is "."; the empty path stays empty. A name that looks like a drive does not become one. In a
    /// path with the extended-length prefix, dots are names, and stay.
    ///
    /// | path         | normal     |   | path               | normal          |
    /// |--------------|------------|---|--------------------|-----------------|
    /// | `a/./b//c`   | `a/b/c`    |   | `C:/../a`          | `C:/a`          |
    /// | `a/../b`     | `b`        |   | `C:a/../..`        | `C:..`          |
    /// | `a/../../b`  | `../b`     |   | `//srv/share/../a` | `//srv/share/a` |
    /// | `a/..`       | `.`        |   | `a/../C:/b`        | `./C:/b`        |
    TPathCore LexicallyNormal() const;

    /// The way from `base` to here, in normal form: "../c" from "a/b" to "a/c", "." from a path to itself.
    /// Empty when the text does not tell: when the root names or the shares differ, when only one has a root
    /// directory, or when the base leads upwards to where nobody knows.
    TPathCore RelativeTo(TPathCore const &base,
                         TStringCore::CaseSensitivity sensitivity = caseSensitivity()) const;

    /// Whether this is `base`, or something below it: their normal forms begin alike, element by element.
    /// "/a/bc" is not under "/a/b", and neither is "/a/b/../c".
    bool IsUnder(TPathCore const &base, TStringCore::CaseSensitivity sensitivity = caseSensitivity()) const;

    /// The base, and behind it a text that nobody vouches for: a name in an archive, in a request, in a
    /// manifest. Both slashes separate its names, on every system, so that what is refused here is refused
    /// there. The result has the names of the text behind the base, with one "/" between two. An empty text
    /// gives the base.
    ///
    /// Throws `Exception` for a text that could lead out of the base, or to something else than a file, on
    /// Windows or on Linux. The message is the first of these that applies, at the beginning and then name by
    /// name:
    ///
    /// | message, behind "SafeJoin: "                         | for example                              |
    /// |------------------------------------------------------|------------------------------------------|
    /// | the path has a zero unit.                            |                                          |
    /// | the path has an extended-length or device prefix.    | `//?/C:/x`, `\\.\nul`, `\??\C:\x`        |
    /// | the path has a root name.                            | `C:/x`, `//srv/share/x`                  |
    /// | the path has a root directory.                       | `/x`                                     |
    /// | the path begins in the current folder of a drive.    | `C:x`                                    |
    /// | the path leads upwards.                              | `..`, `a/../b`                           |
    /// | a name has an alternate stream.                      | `ab:c`, `ab::$DATA`                      |
    /// | a name ends with a dot or a blank.                   | `.`, `a.`, `.. `, `a /b`                 |
    /// | a name is that of a device.                          | `nul`, `a/COM1.txt`, `conin$`            |
    ///
    /// Devices are CON, PRN, AUX, NUL, CONIN$, CONOUT$, CLOCK$, and COM and LPT with a digit, the high 1, 2
    /// and 3 included; in any case of letters, with blanks and with extensions. When the base is only the
    /// beginning of a root name, such as "//", so that the joined path would have another root: "SafeJoin:
    /// the base is not a folder.".
    ///
    /// What is text here may still be a link on the disk. To hold off those, open folder by folder.
    static TPathCore SafeJoin(TPathCore const &base, TStringCore const &untrusted);

    // The host's own names

    /// A path of the bytes that the functions of the host's C library give and take. Nothing is removed at
    /// the end.
    ///
    /// **Linux.** Any bytes are a name there, so each sequence of bytes becomes a text of its own, and
    /// `toNativeBytes` gives the same bytes back:
    /// - what is well-formed UTF-8 becomes the text that it is;
    /// - each other byte B, alone, becomes the lone surrogate U+DC00 + B: U+DC80 to U+DCFF. The rules of
    /// UTF-8 are strict
    ///   here: surrogates in their three-byte form, five- and six-byte forms and forms that are longer than
    ///   they have to be, which `TStringCore::fromUtf8` decodes, are such bytes, too. So a text never gets
    ///   U+DC80 in two ways;
    /// - a back slash, which is part of a name there and a separator here, becomes U+DC5C in the same way.
    ///
    /// **Windows.** The bytes are UTF-8 as `TStringCore::fromUtf8` takes it, and back slashes are separators.
    static TPathCore fromNativeBytes(std::string_view bytes);

    /// The reverse. On Linux, a unit from U+DC80 to U+DCFF that is no half of a pair, and U+DC5C, become one
    /// byte each. All else becomes UTF-8 as by `TStringCore::toUtf8`, with other lone surrogates in their
    /// three-byte form, and back slashes, which only `Swap` leaves in a path, as slashes. So the bytes of two
    /// paths behind each other are those of both joined; and a text that did not come from bytes may come
    /// back as another one: lone surrogates as three lone surrogates, and several U+DC80 to U+DCFF as the
    /// text whose UTF-8 their bytes are.
    ///
    /// On Windows, the text of `ForHost` as UTF-8.
    std::string toNativeBytes() const;

    /// The text with the host's own separator: back slashes on Windows, and slashes elsewhere. What opens
    /// files by text:
    /// `_wfopen(path.ForHost().constData(), L"rb")` on Windows, `fopen(path.toNativeBytes().c_str(), "rb")`
    /// elsewhere, and on every system `std::ofstream(PathToFilesystem(path))`, of TPathCoreFilesystem.h.
    TStringCore ForHost() const;

    // Comparison. The operators and functors are in TPathCoreOperators.h.

    /// -1, 0 or 1, as `TStringCore::compare` of both texts without regard to case.
    int Compare(TPathCore const &other) const noexcept
    {
        return m_text.compare(other.m_text, caseSensitivity());
    }

    static constexpr TStringCore::CaseSensitivity caseSensitivity() noexcept
    {
        return TStringCore::CaseInsensitive;
    }

    /// The back slash.
    static constexpr TCodeUnit nativeSeparatorDEPRECATED() noexcept { return u'\\'; }

private:
    friend class vansys::detail::PathAccess;

    /// A path of text that is generic already.
    static TPathCore MakePath(TStringCore generic) noexcept;

    void MakeGeneric();
    void RemoveTrailingSeparator();
    TPathCore Part(int position, int count) const;

    // Positions in the text; -1 where there is none.

    int RootNameLength() const noexcept;
    int RootDirectoryIndex() const noexcept;
    int FilenameIndex() const noexcept;
    int ExtensionIndex() const noexcept;
    int UNCObjectNameIndex() const noexcept;

    /// How many units the element at the position has, or the separators there. Throw `Exception` "Element
    /// position out of range." or "Separator position out of range." outside the text.
    int ElementLengthAt(int position) const;
    int SeparatorLengthAt(int position) const;

    TStringCore m_text;
};

static_assert(sizeof(TPathCore) == sizeof(TStringCore));

#include "vansys/PathElements.h"
#include "vansys/TPathCoreException.h"
#include "vansys/TPathCoreIterator.h"
#include "vansys/TPathCoreOperators.h"
