#include "Output.h"

#include <vansys/VantrelException.h>

#include <random>
#include <system_error>
#include <utility>

namespace treehash
{

namespace fs = std::filesystem;

Output::Temporary::~Temporary()
{
    std::error_code ignored;
    if (!m_path.empty())
        fs::remove(m_path, ignored);
}

void Output::Temporary::RenameTo(fs::path const &target)
{
    std::error_code error;
    fs::rename(m_path, target, error);
    if (error)
        ThrowSystemError(error);
    m_path.clear();
}

void Output::Closer::operator()(std::FILE *file) const
{
    if (file != stdout)
        std::fclose(file);
}

Output::Output(std::optional<std::string> const &name)
{
    if (!name)
    {
        m_file.reset(stdout);
        m_isTerminal = TerminalColumns(stdout) > 0;
        return;
    }

    m_target = PathFromName(*name);
    std::error_code error;
    if (fs::is_symlink(m_target, error))
    {
        m_target = fs::canonical(m_target, error);
        if (error)
            ThrowSystemError(error);
    }
    fs::file_status const status = fs::status(m_target, error);
    if (fs::exists(status) && !fs::is_regular_file(status))
    {
        m_file.reset(OpenForWriting(NameFromPath(m_target), Create::OrReplace));
        return;
    }
    OpenTemporary();
    if (fs::exists(status))
    {
        // What was not for everybody's eyes stays so.
        fs::permissions(m_temporary->Path(), status.permissions(), error);
        if (error)
            ThrowSystemError(error);
    }
}

void Output::OpenTemporary()
try
{
    // A short name, which fits also where that of the target takes all that the system allows.
    fs::path path = m_target.parent_path() / (".treehash-" + std::to_string(std::random_device()()));
    m_interruptGuard.emplace();
    m_file.reset(OpenForWriting(NameFromPath(path), Create::NewFile));
    m_temporary.emplace(std::move(path));
}
catch (VantrelException const &)
{
    StackExceptionAndRethrow("Cannot create a temporary file in its folder");
}

void Output::Write(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), m_file.get()) != text.size())
        ThrowSystemError();
}

void Output::Commit()
{
    if (std::fflush(m_file.get()) != 0)
        ThrowSystemError();
    if (!m_temporary)
        return;
    FlushToDisk(m_file.get());
    m_file.reset();
    m_temporary->RenameTo(m_target);
}

} // namespace treehash
