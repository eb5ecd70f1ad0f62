/// @file
/// Where the manifest goes.
#pragma once

#include "Platform.h"

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace treehash
{

/// A manifest in the making. A file appears under its own name only when it is complete; until then it is
/// written under another name in the same folder, and is removed if the object goes before `Commit`, which it
/// also does when the user interrupts the program. Failures are `VantrelException`s.
class Output
{
public:
    /// Standard output, when there is no name. A name that is a symbolic link stands for what it points to. A
    /// file that exists and is not a regular one is written to directly.
    explicit Output(std::optional<std::string> const &name);

    bool IsTerminal() const { return m_isTerminal; }

    void Write(std::string_view text);

    /// Makes sure that everything has been written, and lets the file appear. Nothing may be written after
    /// it.
    void Commit();

private:
    /// A file that is removed unless it is renamed.
    class Temporary
    {
    public:
        explicit Temporary(std::string name) noexcept : m_name(std::move(name)) {}

        ~Temporary();
        Temporary(Temporary const &) = delete;
        Temporary &operator=(Temporary const &) = delete;

        std::string const &Name() const { return m_name; }

        void RenameTo(std::string const &target);

    private:
        std::string m_name;
    };

    /// Leaves standard output open.
    struct Closer
    {
        void operator()(std::FILE *file) const;
    };

    void OpenTemporary();

    bool m_isTerminal = false;
    std::string m_target;
    // In this order: the file is closed, then removed, then an interrupt takes its course.
    std::optional<InterruptGuard> m_interruptGuard;
    std::optional<Temporary> m_temporary;
    std::unique_ptr<std::FILE, Closer> m_file;
};

} // namespace treehash
