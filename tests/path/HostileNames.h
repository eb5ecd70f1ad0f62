/// @file
/// Texts that lead out of the folder that they are joined to, or to something else than a file, on Windows or
/// on Linux.
#pragma once

#include "vansys/TStringCore.h"

#include <string_view>

/// Calls `visit(reason, text)` with each of them, and with what `SafeJoin` says of it.
template <class Visit>
void VisitHostileNames(Visit const &visit)
{
    using namespace std::string_view_literals;
    struct Group
    {
        char const *reason;
        std::u16string_view texts; ///< with "|" in between
    };
    static constexpr Group Groups[] = {
        {"the path has a zero unit.", u"\0|a\0|a\0/../b|../a\0.txt"sv},
        {"the path has an extended-length or device prefix.",
         u"//?/C:/x|\\\\?\\C:\\x|\\\\?\\UNC\\srv\\share|\\\\.\\nul|//./C:/x|\\\\.\\pipe\\x|\\?\?\\C:\\x|"
         u"/?\?/C:/x|/\\?\\x|\\\\.\\PhysicalDrive0|//?/GLOBALROOT/Device/x"},
        {"the path has a root name.",
         u"C:/|C:\\x|c:/x/../y|z:\\|//srv|//srv/share/x|\\\\srv\\c$\\x|/\\srv\\x|\\/srv/x|//|///x|\\\\"},
        {"the path has a root directory.", u"/|\\|/x|\\x|/etc/passwd|/..|/?\?|/?/x"},
        {"the path begins in the current folder of a drive.", u"C:|C:x|d:..\\x|C:a/b|z:.|a::$DATA"},
        {"the path leads upwards.",
         u"..|../x|..\\x|a/..|a/../../x|a\\..\\..\\x|a/..\\x|a//../x|../|a/b/../c"},
        {"a name has an alternate stream.",
         u"ab:c|ab::$DATA|a/b:c|:x|ab:|a.txt:evil.exe|a/C:/x|nul:|.:x|..:x|1:x|ab:c:$INDEX_ALLOCATION"},
        {"a name ends with a dot or a blank.",
         u".|a.|a |...|.. |. |.. /x|a./b|a /b|./a|a/.|a/. /b|..../x|.. .|nul.|con | |a/ /b|x. . ."},
        {"a name is that of a device.",
         u"nul|CON|con|PrN|AUX|Nul.txt|aux.tar.gz|con .txt|a/nul|nul/a|a\\COM1|com0|COM9.log|lpt1|LPT9.x|"
         u"COM\u00B9|com\u00B2.txt|LPT\u00B3|CONIN$|conout$.x|CLOCK$|prn  .a|NUL..x|a/b/aux.c"},
    };
    for (Group const &group : Groups)
        for (TStringCore const &text : TStringCore(group.texts).split(u'|'))
            visit(group.reason, text);
}
