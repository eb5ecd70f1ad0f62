#include "explorer/Scheduler.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <unordered_set>
#include <utility>

// Goes from one stack to another, with the registers that a function has to preserve.
asm(R"(
    .text
explorer_switch:
    pushq %rbp; pushq %rbx; pushq %r12; pushq %r13; pushq %r14; pushq %r15
    movq %rsp, (%rdi)
    movq %rsi, %rsp
    popq %r15; popq %r14; popq %r13; popq %r12; popq %rbx; popq %rbp
    ret
)");
extern "C" void explorer_switch(std::uint64_t **from, std::uint64_t *to);

namespace explorer
{

namespace
{

constexpr std::size_t DirtyWords = 256; // of a stack, below what is in use

using Stack = std::array<std::uint64_t, 2048>;

struct Thread
{
    enum State
    {
        Between, // two calls
        Running, // in a call
        Woken,   // in a call in which it has slept
        Late,    // the same, and its time limit has passed, which it does not know yet
        Asleep,
        AsleepAWhile, // until its time limit
    };

    std::uint64_t *top = nullptr; // of the stack, while another one is in use
    State state = Between;
    std::size_t call = 0;                // the present or the next one
    bool result = false;                 // of the last one
    std::uint32_t const *word = nullptr; // on which it sleeps
    Time deadline{};

    bool IsAtWork() const { return state == Running || state == Woken || state == Late; }
    bool IsAsleep() const { return state == Asleep || state == AsleepAWhile; }
};

/// What may come next: a thread goes on, or one that sleeps gets into another state.
using Option = std::pair<std::size_t, Thread::State>;

struct TraceLine
{
    std::size_t thread;
    char const *what; // or the file of a step,
    int line = 0;     // and the line
    std::uint64_t found = 0;
};

class Scheduler final : public System
{
public:
    Scheduler(Subject const &subject, char const *program, Plant const &plant)
        : m_subject(subject),
          m_plant(plant)
    {
        s_system = this;
        std::istringstream words(program);
        std::size_t thread = 0;
        for (std::string word; words >> word;)
        {
            if (word == "|")
                ++thread;
            else
                m_calls[thread].push_back(word);
        }
    }

    /// Depth first: after an execution, the last choice that has an alternative left takes it.
    Findings Explore()
    {
        do
        {
            Execute();
            while (!m_path.empty() && m_path.back()-- == 0)
                m_path.pop_back();
        } while (m_findings.failure.empty() && !m_path.empty());
        m_findings.states = m_known.size();
        return m_findings;
    }

    // These run on the stacks of the threads.

    void Step(void const *value, std::size_t size, Site site) override
    {
        if (m_step.what && m_current != Prober)
            Yield();
        m_step = {m_current, site.file, site.line};
        std::memcpy(&m_step.found, value, size);
    }

    /// As the kernel does it, the word is compared first.
    bool Sleep(std::uint32_t const *word, std::uint32_t expected, Time deadline, Site site) override
    {
        Step(word, sizeof *word, site);
        if (*word != expected && !IsPlanted("sleeps whatever the word is", site))
            return true;
        if (deadline <= m_now)
            return false;
        Thread &thread = m_threads[m_current];
        thread.state = deadline == Never ? Thread::Asleep : Thread::AsleepAWhile;
        thread.word = word;
        thread.deadline = deadline;
        Yield();
        return std::exchange(thread.state, Thread::Woken) != Thread::Late;
    }

    void Wake(std::uint32_t const *word, std::size_t most, Site site) override
    {
        Step(word, sizeof *word, site);
        auto const sleeps = [word](Thread const &thread) { return thread.IsAsleep() && thread.word == word; };
        auto const count = static_cast<std::size_t>(std::ranges::count_if(m_threads, sleeps));
        if (count == 0 || IsPlanted("wakes nobody", site))
            return;
        std::size_t left = count > most ? Choose(count) : 0; // asleep before the one that is woken
        for (Thread &thread : m_threads)
        {
            if (sleeps(thread) && (count <= most || left-- == 0))
                thread.state = Thread::Woken;
        }
    }

    bool IsPlanted(char const *fault, Site site) override
    {
        Plant const here{fault, site};
        m_findings.plants.insert(here);
        return here == m_plant;
    }

    Time Now() const override { return m_now; }

    void const *CurrentThread() const override { return m_threads.data() + m_current; }

private:
    static constexpr std::size_t Prober = MaxThreads; // not one of the threads

    void Execute()
    {
        m_memory.fill(0);
        m_object = m_subject.make(m_memory);
        m_witness = Witness(m_subject.rules);
        m_now = {};
        m_wakesForNoReason = m_plant == Plant() ? 1 : 0;
        m_depth = 0;
        m_statesAlone.clear();
        m_trace.clear();
        for (m_current = 0; m_current < MaxThreads; ++m_current)
        {
            std::uint64_t *const end = m_stacks[m_current].end();
            m_threads[m_current] = {.top = end};
            Clear();
            m_threads[m_current].top = end - 8;                    // six registers, and
            end[-2] = reinterpret_cast<std::uint64_t>(&RunThread); // where the first switch returns to
        }
        m_current = 0;
        while (m_findings.failure.empty() && TakeOption())
        {
        }
    }

    /// Nothing is left of what was on the stack: it must not tell one state from another.
    void Clear()
    {
        std::uint64_t *const top = m_threads[m_current].top;
        std::fill(std::max(top - DirtyWords, m_stacks[m_current].begin()), top, 0);
    }

    /// The body of each thread. Does not return: an execution leaves its threads where they are.
    static void RunThread()
    {
        Scheduler &self = static_cast<Scheduler &>(*s_system);
        Thread &thread = self.m_threads[self.m_current];
        for (;;)
        {
            thread.result = self.m_object(self.m_calls[self.m_current][thread.call],
                                          static_cast<std::uint32_t>(self.m_current + 1));
            thread.state = Thread::Between;
            thread.call += thread.result ? 1 : 2;
            self.Yield();
        }
    }

    /// Returns when it is the current thread's turn again.
    void Yield() { explorer_switch(&m_threads[m_current].top, m_top); }

    /// Lets the current thread take a step. What it does before its first step belongs to that, and what it
    /// does after its last one too: so the times of the calls are as short as can be, and the rules as
    /// strict.
    void Go()
    {
        m_step = {};
        explorer_switch(&m_top, m_threads[m_current].top);
        Clear();
        if (m_step.what)
            m_trace.push_back(m_step);
    }

    std::size_t Choose(std::size_t count)
    {
        if (m_depth == m_path.size())
            m_path.push_back(count - 1);
        return count - 1 - m_path[m_depth++];
    }

    /// Returns false when all is over, or what follows is known.
    bool TakeOption()
    {
        LetRest();
        if (m_witness.Possible().empty())
            Fail("the rules do not explain this result, or who is left asleep");
        // What comes before the last choice has been looked at.
        if (m_depth + 1 >= m_path.size() && IsKnown(State()))
            return false;
        std::vector<Option> const options = Options();
        if (options.empty())
            return false;
        auto const [index, state] = options[Choose(options.size())];
        if (index == Prober)
        {
            Probe();
            return false;
        }
        Thread &thread = m_threads[index];
        if (thread.IsAsleep())
        {
            Note(index, state == Thread::Late ? "is late" : "wakes for no reason");
            if (state == Thread::Late)
                m_now = std::max(m_now, thread.deadline);
            else
                --m_wakesForNoReason;
            thread.state = state;
            return true;
        }
        if (std::exchange(m_current, index) != index)
            m_statesAlone.clear();
        GoByTheRules(thread);
        return true;
    }

    std::vector<Option> Options() const
    {
        std::vector<Option> options;
        for (std::size_t i = 0; i < MaxThreads; ++i)
        {
            std::size_t const index = (m_current + i) % MaxThreads; // first the one that goes on
            Thread const &thread = m_threads[index];
            bool const isFinished = thread.call >= m_calls[index].size();
            if (!thread.IsAsleep() && !isFinished)
                options.push_back({index, thread.state});
            if (thread.state == Thread::AsleepAWhile)
                options.push_back({index, Thread::Late});
            if (thread.IsAsleep() && m_wakesForNoReason > 0)
                options.push_back({index, Thread::Woken});
        }
        // A thread that has been woken will see to the others.
        if (IsAny(Thread::Asleep) && IsAny(Thread::Running) && !IsAny(Thread::Woken) && !IsAny(Thread::Late))
            options.push_back({Prober, {}});
        return options;
    }

    bool IsAny(Thread::State state) const
    {
        return std::ranges::count(m_threads, state, &Thread::state) != 0;
    }

    void GoByTheRules(Thread &thread)
    {
        if (thread.state == Thread::Between)
        {
            thread.state = Thread::Running;
            Note(m_current, m_calls[m_current][thread.call].c_str());
            m_witness.Begin(m_current, m_calls[m_current][thread.call]);
        }
        Go();
        if (thread.IsAtWork() || thread.IsAsleep())
            return;
        Note(m_current, thread.result ? "returns true" : "returns false");
        m_witness.End(m_current, thread.result);
    }

    /// When nobody is in the middle of a call, those who sleep have to.
    void LetRest()
    {
        if (std::ranges::any_of(m_threads, &Thread::IsAtWork))
            return;
        for (std::size_t i = 0; i < MaxThreads; ++i)
        {
            if (m_threads[i].IsAsleep())
                m_witness.Rest(i, m_threads[i].state == Thread::AsleepAWhile);
        }
    }

    /// Sees whether there is something to be taken, and nobody wakes a sleeper before the end of its call.
    void Probe()
    {
        m_current = Prober;
        if (!m_object(m_subject.probe, 0))
            return;
        Note(Prober, m_subject.probe);
        for (m_current = 0; m_current < MaxThreads; ++m_current)
        {
            for (int steps = 0; steps < 100 && m_threads[m_current].IsAtWork() && !IsAny(Thread::Woken);
                 ++steps)
                Go();
        }
        if (!IsAny(Thread::Woken))
            Fail("a thread sleeps for what is there to be taken, and nobody is on the way to wake it");
    }

    std::uint64_t State() const
    {
        std::uint64_t state = 1;
        auto const add = [&state](auto value)
        {
            state = (state ^ static_cast<std::uint64_t>(value)) * 0x9E3779B97F4A7C15;
            state ^= state >> 29;
        };
        std::ranges::for_each(m_memory, add);
        for (std::size_t i = 0; i < MaxThreads; ++i)
        {
            Thread const &thread = m_threads[i];
            std::for_each<std::uint64_t const *>(thread.top, m_stacks[i].end(), add);
            add(thread.state);
            add(thread.call);
            if (!thread.IsAsleep())
                continue;
            add(reinterpret_cast<std::uintptr_t>(thread.word));
            add(thread.deadline.time_since_epoch().count());
        }
        add(m_now.time_since_epoch().count());
        add(m_wakesForNoReason);
        for (Situation const &situation : m_witness.Possible())
        {
            std::ranges::for_each(situation.object, add);
            std::ranges::for_each(situation.threads, add);
        }
        return state;
    }

    /// Knows the state from now on. Where a path is repeated, it did before.
    bool IsKnown(std::uint64_t state)
    {
        if (std::ranges::count(m_statesAlone, state) != 0)
            Fail("a thread goes round and round while the others stand still");
        m_statesAlone.push_back(state);
        return m_depth == m_path.size() && !m_known.insert(state).second;
    }

    void Note(std::size_t thread, char const *what) { m_trace.push_back({thread, what}); }

    void Fail(char const *what)
    {
        std::ostringstream text;
        text << what << '\n';
        for (TraceLine const &line : m_trace)
        {
            text << "    thread " << line.thread + 1 << ": " << line.what;
            if (line.line != 0)
                text << ':' << line.line << " finds " << line.found;
            text << '\n';
        }
        m_findings.failure = text.str();
    }

    Subject const &m_subject;
    Plant const m_plant;
    std::array<std::vector<std::string>, MaxThreads> m_calls;
    alignas(16) std::array<Stack, MaxThreads> m_stacks;
    std::uint64_t *m_top = nullptr;  // of the scheduler's own stack
    std::vector<std::size_t> m_path; // of the execution: how many alternatives each choice has left
    std::unordered_set<std::uint64_t> m_known;
    Findings m_findings;

    // Anew in each execution.
    Memory m_memory;
    Object m_object;
    Witness m_witness{m_subject.rules};
    std::array<Thread, MaxThreads> m_threads;
    Time m_now;
    int m_wakesForNoReason; // that may still come
    std::size_t m_current;
    std::size_t m_depth;                      // in the path
    std::vector<std::uint64_t> m_statesAlone; // since only the current thread takes steps
    std::vector<TraceLine> m_trace;

    TraceLine m_step; // that the current thread takes, if it has begun
};

} // namespace

Findings Explore(Subject const &subject, char const *program, Plant const &plant)
{
    return Scheduler(subject, program, plant).Explore();
}

} // namespace explorer
