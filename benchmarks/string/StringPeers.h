/// @file
/// The string classes that are compared, behind one interface: each operation is written as a user of that
/// class would write it.
#pragma once

#include "Rows.h"
#include "vansys/TStringCore.h"

#include <string>

#if defined(VANSYS_BENCH_QT)
#    include <QByteArray>
#    include <QString>
#endif

#if defined(VANSYS_BENCH_ICU)
#    include <unicode/bytestream.h>
#    include <unicode/uchar.h>
#    include <unicode/unistr.h>
#endif

namespace bench
{

struct Vansys
{
    static constexpr char const *Name = OwnName;
    using String = TStringCore;

    static String FromUnits(char16_t const *units, int count) { return {units, count}; }

    static String FromUtf8(char const *bytes) { return bytes; }

    static String FromUtf8(char const *bytes, int count) { return {bytes, count}; }

    static std::string ToUtf8(String const &text) { return text.toStdString(); }

    static void Append(String &text, char16_t unit) { text.append(unit); }
};

/// It knows no UTF-8.
struct StdString
{
    static constexpr char const *Name = "std::u16string";
    using String = std::u16string;

    static String FromUnits(char16_t const *units, int count)
    {
        return {units, static_cast<std::size_t>(count)};
    }

    static void Append(String &text, char16_t unit) { text.push_back(unit); }
};

#if defined(VANSYS_BENCH_QT)

struct Qt
{
    static constexpr char const *Name = "QString";
    using String = QString;

    static String FromUnits(char16_t const *units, int count)
    {
        return QString(reinterpret_cast<QChar const *>(units), count);
    }

    static String FromUtf8(char const *bytes) { return QString::fromUtf8(bytes); }

    static String FromUtf8(char const *bytes, int count) { return QString::fromUtf8(bytes, count); }

    static QByteArray ToUtf8(String const &text) { return text.toUtf8(); }

    static void Append(String &text, char16_t unit) { text.append(QChar(unit)); }
};

#endif

#if defined(VANSYS_BENCH_ICU)

struct Icu
{
    static constexpr char const *Name = "icu::UnicodeString";
    using String = icu::UnicodeString;

    static String FromUnits(char16_t const *units, int count) { return String(units, count); }

    static String FromUtf8(char const *bytes) { return String::fromUTF8(bytes); }

    static String FromUtf8(char const *bytes, int count)
    {
        return String::fromUTF8(icu::StringPiece(bytes, count));
    }

    static std::string ToUtf8(String const &text)
    {
        std::string result;
        return text.toUTF8String(result);
    }

    static void Append(String &text, char16_t unit) { text.append(unit); }
};

#endif

/// A list of peers to pass around.
template <class... Peers>
struct PeerList
{
};

template <class Extra, class... Peers>
constexpr PeerList<Peers..., Extra> Plus(PeerList<Peers...>)
{
    return {};
}

/// Those that convert from and to UTF-8.
inline constexpr auto Utf8Peers = PeerList<Vansys
#if defined(VANSYS_BENCH_QT)
                                           ,
                                           Qt
#endif
#if defined(VANSYS_BENCH_ICU)
                                           ,
                                           Icu
#endif
                                           >();

inline constexpr auto AllPeers = Plus<StdString>(Utf8Peers);

} // namespace bench
