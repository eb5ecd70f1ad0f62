/// @file
/// Texts that lead out of the folder that they are joined to, or to something else than a file, on Windows or
/// on Linux.
#pragma once

#include <initializer_list>
#include <string_view>

struct HostileNames
{
    char const *reason; ///< what `SafeJoin` says
    std::initializer_list<std::u16string_view> texts;
};

/// Calls the function with each group.
template <class Visit>
void VisitHostileNames(Visit const &visit)
{
    using namespace std::string_view_literals;
    for (HostileNames const &group : std::initializer_list<HostileNames>{
             {"the path has a zero unit.", {u"\0"sv, u"a\0"sv, u"a\0/../b"sv, u"../a\0.txt"sv}},
             {"the path has an extended-length or device prefix.",
              {u"//?/C:/x", u"\\\\?\\C:\\x", u"\\\\?\\UNC\\srv\\share", u"\\\\.\\nul", u"//./C:/x",
               u"\\\\.\\pipe\\x", u"\\?\?\\C:\\x", u"/?\?/C:/x", u"/\\?\\x", u"\\\\.\\PhysicalDrive0",
               u"//?/GLOBALROOT/Device/x"}},
             {"the path has a root name.",
              {u"C:/", u"C:\\x", u"c:/x/../y", u"z:\\", u"//srv", u"//srv/share/x", u"\\\\srv\\c$\\x",
               u"/\\srv\\x", u"\\/srv/x", u"//", u"///x", u"\\\\"}},
             {"the path has a root directory.",
              {u"/", u"\\", u"/x", u"\\x", u"/etc/passwd", u"/..", u"/?\?", u"/?/x"}},
             {"the path begins in the current folder of a drive.",
              {u"C:", u"C:x", u"d:..\\x", u"C:a/b", u"z:.", u"a::$DATA"}},
             {"the path leads upwards.",
              {u"..", u"../x", u"..\\x", u"a/..", u"a/../../x", u"a\\..\\..\\x", u"a/..\\x", u"a//../x",
               u"../", u"a/b/../c"}},
             {"a name has an alternate stream.",
              {u"ab:c", u"ab::$DATA", u"a/b:c", u":x", u"ab:", u"a.txt:evil.exe", u"a/C:/x", u"nul:", u".:x",
               u"..:x", u"1:x", u"ab:c:$INDEX_ALLOCATION"}},
             {"a name ends with a dot or a blank.",
              {u".", u"a.", u"a ", u"...", u".. ", u". ", u".. /x", u"a./b", u"a /b", u"./a", u"a/.",
               u"a/. /b", u"..../x", u".. .", u"nul.", u"con ", u" ", u"a/ /b", u"x. . ."}},
             {"a name is that of a device.",
              {u"nul",        u"CON",       u"con",    u"PrN",       u"AUX",           u"Nul.txt",
               u"aux.tar.gz", u"con .txt",  u"a/nul",  u"nul/a",     u"a\\COM1",       u"com0",
               u"COM9.log",   u"lpt1",      u"LPT9.x", u"COM\u00B9", u"com\u00B2.txt", u"LPT\u00B3",
               u"CONIN$",     u"conout$.x", u"CLOCK$", u"prn  .a",   u"NUL..x",        u"a/b/aux.c"}}})
        visit(group);
}
