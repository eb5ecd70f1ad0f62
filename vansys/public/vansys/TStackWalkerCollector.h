/// @file
/// TStackWalkerCollector: the lines of call stacks in a list.
#pragma once

#include "vansys/TStackWalker.h"

#include <list>
#include <string>

/// A walker of the calling process that keeps the lines.
///
///     TStackWalkerCollector walker;
///     walker.GenerateCallstack();
///     for (std::string const &line : walker.GetCallstack())
///         ...
class VANSYS_API TStackWalkerCollector : public TStackWalker
{
public:
    TStackWalkerCollector();
    TStackWalkerCollector(TStackWalkerCollector const &);
    TStackWalkerCollector(TStackWalkerCollector &&) noexcept;
    TStackWalkerCollector &operator=(TStackWalkerCollector const &);
    TStackWalkerCollector &operator=(TStackWalkerCollector &&) noexcept;
    ~TStackWalkerCollector() override;

    /// Adds the line to the list.
    void OnOutput(char const *line) override;

    /// The lines of all walks since the construction or the last `Reset`, in the order in which they came.
    std::list<std::string> const &GetCallstack() const noexcept { return m_lines; }

    /// Forgets the lines.
    void Reset() noexcept { m_lines.clear(); }

private:
    std::list<std::string> m_lines;
};
