#include "Manifest.h"

#include "Platform.h"

#include <vansys/TScanStringCore.h>
#include <vansys/TStringCore.h>

#include <algorithm>
#include <array>

namespace treehash
{

namespace
{

/// Far more than a digest and the longest name that a system takes, with every byte escaped. What is longer
/// is no manifest, and must not fill the memory.
constexpr std::size_t MaxLineLength = 256 * 1024;

bool NeedsEscape(std::string_view name)
{
    return name.find_first_of("\n\r\\") != std::string_view::npos;
}

std::optional<std::string> UnescapedName(std::string_view escaped)
{
    std::string name;
    name.reserve(escaped.size());
    for (std::size_t index = 0; index < escaped.size(); ++index)
    {
        if (escaped[index] != '\\')
        {
            name += escaped[index];
            continue;
        }
        char const code = ++index < escaped.size() ? escaped[index] : '\0';
        if (code == 'n')
            name += '\n';
        else if (code == 'r')
            name += '\r';
        else if (code == '\\')
            name += '\\';
        else
            return std::nullopt;
    }
    return name;
}

/// Cuts a file into lines.
class LineReader
{
public:
    explicit LineReader(std::string const &name) : m_file(name, InputFile::Accept::AnyFile) {}

    /// Stores the next line without its line feed. A line that is too long is cut to one byte more than
    /// `MaxLineLength`. Returns false when there is none.
    bool Next(std::string &line)
    {
        line.clear();
        bool found = false;
        while (FillBuffer())
        {
            found = true;
            auto const first = m_buffer.begin() + m_position;
            auto const last = m_buffer.begin() + m_end;
            auto const lineFeed = std::find(first, last, static_cast<unsigned char>('\n'));
            std::size_t const room = MaxLineLength + 1 - line.size();
            line.append(first, first + std::min(lineFeed - first, static_cast<std::ptrdiff_t>(room)));
            m_position = lineFeed - m_buffer.begin();
            if (lineFeed != last)
            {
                ++m_position;
                break;
            }
        }
        return found;
    }

private:
    /// Returns false at the end of the file.
    bool FillBuffer()
    {
        if (m_position == m_end)
        {
            m_position = 0;
            m_end = static_cast<std::ptrdiff_t>(m_file.Read(m_buffer.data(), m_buffer.size()));
        }
        return m_position < m_end;
    }

    InputFile m_file;
    std::array<unsigned char, 16384> m_buffer;
    std::ptrdiff_t m_position = 0; ///< What has not been given out yet lies from here to the end.
    std::ptrdiff_t m_end = 0;
};

} // namespace

std::string EscapedName(std::string_view name)
{
    std::string escaped;
    escaped.reserve(name.size());
    for (char const character : name)
    {
        if (character == '\n')
            escaped += "\\n";
        else if (character == '\r')
            escaped += "\\r";
        else if (character == '\\')
            escaped += "\\\\";
        else
            escaped += character;
    }
    return escaped;
}

std::string FormatEntry(std::string_view digest, std::string_view name)
{
    std::string line;
    if (NeedsEscape(name))
        line += '\\';
    line.append(digest).append("  ").append(EscapedName(name)).append("\n");
    return line;
}

std::optional<Entry> ParseEntry(std::string_view line, Algorithm const *required)
{
    // One unit for each byte, as names need not be valid in any encoding.
    TStringCore const text = TStringCore::fromLatin1(line.data(), static_cast<int>(line.size()));
    bool const isEscaped = text.startsWith('\\');
    TStringCore digest;
    TStringCore name;
    try
    {
        TScanStringCore scanner(text);
        if (isEscaped)
            scanner.skip("\\");
        scanner.readAnyOf(digest, "0123456789abcdefABCDEF").skip(" ");
        // This character once told text from binary files. The files are read alike.
        scanner.skip(text.at(scanner.index()) == u'*' ? "*" : " ");
        scanner.readString(name, -1);
        if (name.isEmpty() || scanner.index() != text.length())
            return std::nullopt;
    }
    catch (TScanStringCore::Exception const &)
    {
        return std::nullopt;
    }

    Algorithm const *const algorithm = FindAlgorithm(static_cast<std::size_t>(digest.length()));
    if (algorithm == nullptr || (required != nullptr && algorithm != required))
        return std::nullopt;
    std::optional<std::string> bytes = name.toLatin1();
    if (isEscaped)
        bytes = UnescapedName(*bytes);
    if (!bytes)
        return std::nullopt;
    return Entry{algorithm, digest.toLower().toLatin1(), std::move(*bytes)};
}

Manifest ReadManifest(std::string const &name, Algorithm const *required)
{
    Manifest manifest;
    LineReader reader(name);
    std::string line;
    for (std::size_t number = 1; reader.Next(line); ++number)
    {
        if (line.ends_with('\r'))
            line.pop_back();
        if (line.empty() || line.starts_with('#'))
            continue;
        std::optional<Entry> entry;
        if (line.size() <= MaxLineLength)
            entry = ParseEntry(line, required);
        if (entry)
            manifest.entries.push_back(std::move(*entry));
        else
            manifest.malformedLines.push_back(number);
    }
    return manifest;
}

} // namespace treehash
