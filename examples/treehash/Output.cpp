#include "Output.h"

#include <vansys/VantrelException.h>

#include <random>
#include <system_error>
#include <utility>

namespace treehash
{

Output::Temporary::~Temporary()
{
    if (!m_name.empty())
        RemoveFile(m_name);
}

void Output::Temporary::RenameTo(std::string const &target)
{
    std::error_code error;
    RenameFile(m_name, target, error);
    if (error)
        ThrowSystemError(error);
    m_name.clear();
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

    m_target = *name;
    std::error_code error;
    if (IsLink(m_target))
    {
        m_target = CanonicalName(m_target, error);
        if (error)
            ThrowSystemError(error);
    }
    FileKind const kind = StatusOf(m_target, error).kind;
    if (kind != FileKind::None && kind != FileKind::Regular)
    {
        m_file.reset(OpenForWriting(m_target, Create::OrReplace));
        return;
    }
    OpenTemporary();
    if (kind == FileKind::Regular)
    {
        // What was not for everybody's eyes stays so.
        CopyPermissions(m_target, m_temporary->Name(), error);
        if (error)
            ThrowSystemError(error);
    }
}

void Output::OpenTemporary()
try
{
    // A short name, which fits also where that of the target takes all that the system allows.
    std::string name =
        m_target.substr(0, m_target.rfind('/') + 1) + ".treehash-" + std::to_string(std::random_device()());
    m_interruptGuard.emplace();
    m_file.reset(OpenForWriting(name, Create::NewFile));
    m_temporary.emplace(std::move(name));
}
catch (VantrelException const &)
{
    StackExceptionAndRethrow("Cannot create a temporary file in its folder");
}

void Output::Write(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), m_file.get()) != text.size() ||
        (m_isTerminal && std::fflush(m_file.get()) != 0))
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
