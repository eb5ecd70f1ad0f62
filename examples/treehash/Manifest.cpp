#include "Manifest.h"

#include "Platform.h"

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

/// Lowercase; empty when the text is not made of hexadecimal digits.
std::string NormalizedDigest(std::string_view text)
{
    std::string digest;
    for (char const digit : text)
    {
        if ((digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f'))
            digest += digit;
        else if (digit >= 'A' && digit <= 'F')
            digest += static_cast<char>(digit - 'A' + 'a');
        else
            return {};
    }
    return digest;
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
    bool const escaped = line.starts_with('\\');
    if (escaped)
        line.remove_prefix(1);

    std::size_t const digestLength = std::min(line.find(' '), line.size());
    Algorithm const *const algorithm = FindAlgorithm(digestLength);
    if (algorithm == nullptr || (required != nullptr && algorithm != required))
        return std::nullopt;
    std::string digest = NormalizedDigest(line.substr(0, digestLength));
    line.remove_prefix(digestLength);

    // The second character once told text from binary files. The files are read alike.
    bool const separated = line.starts_with("  ") || line.starts_with(" *");
    if (digest.empty() || !separated)
        return std::nullopt;
    line.remove_prefix(2);

    if (line.empty() || line.find('\0') != std::string_view::npos)
        return std::nullopt;
    std::optional<std::string> name = escaped ? UnescapedName(line) : std::string(line);
    if (!name)
        return std::nullopt;
    return Entry{algorithm, std::move(digest), std::move(*name)};
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
