/// @file
/// TStackWalkerBase: what all walkers of call stacks have in common.
#pragma once

#include "vansys/Export.h"

/// Describes call stacks as lines of text, one line per frame, and gives each line to `OnOutput`.
///
/// `TStackWalker` walks the threads of a process; `TStackWalkerCollector` keeps the lines in a list. To send
/// lines elsewhere, derive from `TStackWalker` and override `OnOutput`.
///
/// A line of a frame whose source is known reads
///
///     0x00000002 parser.cpp(212): core!Parse
///
/// and of one whose source is not
///
///     0x00000003 0x5A2F10 core!Parse
///
/// The flags below leave parts of it out; all are on at first. They belong to this object and are for the
/// thread that uses it.
class VANSYS_API TStackWalkerBase
{
public:
    TStackWalkerBase() noexcept;
    TStackWalkerBase(TStackWalkerBase const &) noexcept;
    TStackWalkerBase(TStackWalkerBase &&) noexcept;
    TStackWalkerBase &operator=(TStackWalkerBase const &) noexcept;
    TStackWalkerBase &operator=(TStackWalkerBase &&) noexcept;
    virtual ~TStackWalkerBase();

    /// Gives out the lines of the calling thread's stack, innermost frame first. Returns whether there were
    /// any to be had; this class has none.
    virtual bool GenerateCallstack();

    /// Gives out the lines of every thread of the process, one thread after the other. This class has none.
    virtual bool GenerateCallstacksForAllThreads();

    /// Takes one line, without a line end. This class drops it. The text is gone after the call.
    virtual void OnOutput(char const *line);

    /// Whether lines begin with the number of the frame, 0 for the innermost, as `0x` and eight hexadecimal
    /// digits.
    void IncludeThreadInfo(bool include) noexcept { m_includeThreadInfo = include; }

    /// Whether lines of an unknown source have the frame's address, as `0x` and hexadecimal digits.
    void IncludeSystemMemoryAddresses(bool include) noexcept { m_includeSystemMemoryAddresses = include; }

    /// Whether lines of a known source have the number of the line: `(212): `.
    void IncludeFileLineNumber(bool include) noexcept { m_includeFileLineNumber = include; }

    /// Whether lines of a known source have the name of the file.
    void IncludeFileName(bool include) noexcept { m_includeFileName = include; }

    /// Sets a mark of the whole process that nothing in the library acts on: by it, hosts tell each other
    /// that call stacks are wanted. Returns `active`. Any thread may call it.
    static bool InitSym(bool active) noexcept;

    /// What the last `InitSym` set; false before. Any thread may call it.
    static bool IsActive() noexcept;

protected:
    bool m_includeThreadInfo = true;
    bool m_includeSystemMemoryAddresses = true;
    bool m_includeFileLineNumber = true;
    bool m_includeFileName = true;
};
