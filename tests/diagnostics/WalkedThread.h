/// @file
/// Threads for walkers to look at, and what walkers find.
#pragma once

#include "vansys/TStackWalkerCollector.h"

#include "support/Latch.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

/// Behind the last call of a function: keeps the compiler from jumping there, which would leave no frame.
inline void KeepFrame()
{
    asm volatile("");
}

/// Keeps what it is given besides the lines.
class RecordingWalker : public TStackWalkerCollector
{
public:
    unsigned walkedThreadId = 0; ///< of the last walk
    int firstEntries = 0;

    /// How many lines have this text.
    int Count(std::string_view text) const
    {
        auto const hasText = [text](std::string const &line) { return line.find(text) != std::string::npos; };
        return static_cast<int>(std::count_if(GetCallstack().begin(), GetCallstack().end(), hasText));
    }

    /// The lines, each with a line end.
    std::string Text() const
    {
        std::string text;
        for (std::string const &line : GetCallstack())
            text += line + '\n';
        return text;
    }

    void OnCallstackEntry(unsigned number, CallstackEntryType type, CallstackEntry const &entry) override
    {
        walkedThreadId = GetWalkedThreadId();
        firstEntries += type == firstEntry ? 1 : 0;
        TStackWalkerCollector::OnCallstackEntry(number, type, entry);
    }
};

/// A thread that runs a function. Its constructor returns when the thread is about to call it; its destructor
/// calls `end`, after which the function has to return.
class WalkedThread
{
public:
    WalkedThread(std::function<void()> function, std::function<void()> end)
        : m_end(std::move(end)),
          m_thread(
              [this, function = std::move(function)]
              {
                  RecordingWalker walker;
                  walker.GenerateCallstack();
                  m_id = walker.walkedThreadId;
                  m_start.CountDown();
                  function();
              })
    {
        m_start.Wait();
    }
    ~WalkedThread()
    {
        m_end();
        m_thread.join();
    }

    unsigned Id() const { return m_id; }

private:
    unsigned m_id = 0;
    Latch m_start{1};
    std::function<void()> m_end;
    std::thread m_thread;
};
