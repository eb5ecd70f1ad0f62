#include "explorer/Scheduler.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <sstream>
#include <utility>

// Goes from one stack to another, with the registers that a function has to preserve.
asm(R"(
    .text
explorer_switch:
    pushq %rbp
    pushq %rbx
    pushq %r12
    pushq %r13
    pushq %r14
    pushq %r15
    movq %rsp, (%rdi)
    movq %rsi, %rsp
    popq %r15
    popq %r14
    popq %r13
    popq %r12
    popq %rbx
    popq %rbp
    ret
)");
extern "C" void explorer_switch(std::uint64_t **from, std::uint64_t *to);

namespace explorer
{

namespace
{

constexpr std::size_t StackWords = 2048;
constexpr std::size_t DirtyWords = 256; // of a stack, below what is in use

// Where an object is made: at the same place in each execution.
alignas(64) std::array<std::uint64_t, 128> s_heap;
std::size_t s_heapUsed = 0;
bool s_isMakingObject = false;

class Hash
{
public:
    void Add(std::uint64_t value)
    {
        m_value = (m_value ^ value) * 0x9E3779B97F4A7C15;
        m_value ^= m_value >> 29;
    }

    void Add(Time time) { Add(static_cast<std::uint64_t>(time.time_since_epoch().count())); }

    void Add(std::uint64_t const *begin, std::uint64_t const *end)
    {
        for (; begin != end; ++begin)
            Add(*begin);
    }

    std::uint64_t Value() const { return m_value; }

private:
    std::uint64_t m_value = 1;
};

} // namespace

struct Scheduler::TraceLine
{
    std::size_t thread;
    char const *what;
    Site site;
    std::uint64_t found;
};

struct Scheduler::Thread
{
    enum State
    {
        Between, // two calls
        Running, // in a call
        Asleep,
        Finished,
    };

    std::vector<std::string> calls;
    std::unique_ptr<std::uint64_t[]> stack = std::make_unique<std::uint64_t[]>(StackWords);

    // Anew in each execution.
    std::uint64_t *top; // of the stack, while another one is in use
    State state;
    std::string_view call; // the present or the next one
    bool result;           // of the last one
    bool mayStep;          // has been chosen for a step, and has not taken it yet
    bool hasSlept;         // in this call
    bool isLate;           // its time limit has passed, which it does not know yet
    std::uint32_t const *word;
    Time deadline;
    TraceLine step;
};

struct Scheduler::Option
{
    enum Kind
    {
        Go,
        PassDeadline,
        WakeForNoReason,
        Probe,
    } kind;
    std::size_t thread;
};

struct Scheduler::Choice
{
    std::size_t chosen;
    std::size_t count;
};

Scheduler *Scheduler::s_current = nullptr;

Scheduler::Scheduler(Subject const &subject, char const *program, Plant const &plant)
    : m_subject(subject),
      m_plant(plant),
      m_threads(1),
      m_witness(subject.rules)
{
    std::istringstream words(program);
    for (std::string word; words >> word;)
    {
        if (word == "|")
            m_threads.emplace_back();
        else
            m_threads.back().calls.push_back(word);
    }
    m_prober = m_threads.size();
    m_threads.emplace_back().calls = {subject.probe};
}

Scheduler::~Scheduler() = default;

Findings Scheduler::Explore()
{
    s_current = this;
    do
        Execute();
    while (m_findings.failure.empty() && MoveToNextExecution());
    m_findings.states = m_known.size();
    return m_findings;
}

void Scheduler::Execute()
{
    ++m_findings.executions;
    m_witness = Witness(m_subject.rules);
    m_now = {};
    m_wakesForNoReason = m_plant.fault == Fault::None ? 1 : 0;
    m_depth = 0;
    m_statesAlone.clear();
    m_isProbing = false;
    m_trace.clear();
    s_heap.fill(0);
    s_heapUsed = 0;
    s_isMakingObject = true;
    m_object = m_subject.make();
    s_isMakingObject = false;
    for (Thread &thread : m_threads)
        Prepare(thread);
    for (m_current = 0; m_findings.failure.empty() && ChooseWhatIsNext();)
        Go();
    m_object = nullptr;
}

void Scheduler::Prepare(Thread &thread)
{
    std::uint64_t *const end = thread.stack.get() + StackWords;
    thread.top = end;
    Clear(thread);
    thread.top = end - 8;                                  // six registers, and
    end[-2] = reinterpret_cast<std::uint64_t>(&RunThread); // where the first switch returns to
    thread.state = Thread::Between;
    thread.call = thread.calls.front();
    thread.isLate = false;
}

/// Nothing is left of what was on the stack: it must not tell one state from another.
void Scheduler::Clear(Thread &thread)
{
    auto const unused = static_cast<std::size_t>(thread.top - thread.stack.get());
    std::fill(thread.top - std::min(unused, DirtyWords), thread.top, 0);
}

/// Depth first: the last choice that has an alternative left takes it.
bool Scheduler::MoveToNextExecution()
{
    while (!m_path.empty() && m_path.back().chosen + 1 == m_path.back().count)
        m_path.pop_back();
    if (m_path.empty())
        return false;
    ++m_path.back().chosen;
    return true;
}

/// The body of each thread. Does not return: an execution leaves its threads where they are.
void Scheduler::RunThread()
{
    Scheduler &self = *s_current;
    Thread &thread = self.m_threads[self.m_current];
    auto const timeLimit = static_cast<std::uint32_t>(self.m_current + 1);
    for (std::size_t i = 0; i < thread.calls.size(); i += thread.result ? 1 : 2)
    {
        thread.call = thread.calls[i];
        if (i != 0) // it was chosen for the first one
            self.Yield();
        thread.result = self.m_object(thread.call, timeLimit);
        thread.state = Thread::Between;
    }
    thread.state = Thread::Finished;
    self.Yield();
}

/// Returns when it is the current thread's turn again.
void Scheduler::Yield()
{
    explorer_switch(&m_threads[m_current].top, m_top);
}

/// Returns false when all is over, or what follows is known.
bool Scheduler::ChooseWhatIsNext()
{
    for (;;)
    {
        Rest();
        // What comes before the last choice has been looked at.
        if (m_depth + 1 >= m_path.size() && IsKnown(State()))
            return false;
        CollectOptions();
        if (m_options.empty())
            return false;
        Option const option = m_options[Choose(m_options.size())];
        Thread &thread = m_threads[option.thread];
        switch (option.kind)
        {
        case Option::Go:
            if (std::exchange(m_current, option.thread) != option.thread)
                m_statesAlone.clear();
            return true;
        case Option::PassDeadline:
            Note(option.thread, "is late");
            m_now = std::max(m_now, thread.deadline);
            thread.isLate = true;
            break;
        case Option::WakeForNoReason:
            Note(option.thread, "wakes for no reason");
            --m_wakesForNoReason;
            break;
        case Option::Probe:
            Probe();
            return false;
        }
        thread.state = Thread::Running;
    }
}

void Scheduler::CollectOptions()
{
    m_options.clear();
    for (std::size_t i = 0; i < m_prober; ++i)
    {
        std::size_t const index = (m_current + i) % m_prober; // first the one that goes on
        Thread const &thread = m_threads[index];
        if (thread.state == Thread::Between || thread.state == Thread::Running)
            m_options.push_back({Option::Go, index});
        if (thread.state == Thread::Asleep && thread.deadline != Never)
            m_options.push_back({Option::PassDeadline, index});
    }
    if (MayProbe())
        m_options.push_back({Option::Probe, m_prober});
    for (std::size_t index = 0; index < m_prober && m_wakesForNoReason > 0; ++index)
    {
        if (m_threads[index].state == Thread::Asleep)
            m_options.push_back({Option::WakeForNoReason, index});
    }
}

/// Lets the current thread take a step. What it does before its first step belongs to that, and what it does
/// after its last one too: so the times of the calls are as short as can be, and the rules as strict.
void Scheduler::Go()
{
    Thread &thread = m_threads[m_current];
    thread.mayStep = true;
    thread.step = {};
    if (thread.state == Thread::Between)
    {
        thread.state = Thread::Running;
        thread.hasSlept = false;
        Note(m_current, thread.call.data());
        if (!m_isProbing)
            m_witness.Begin(m_current, thread.call);
    }
    explorer_switch(&m_top, thread.top);
    Clear(thread);
    if (thread.step.what)
        m_trace.push_back(thread.step);
    if (thread.state == Thread::Running || thread.state == Thread::Asleep)
        return;
    Note(m_current, thread.result ? "returns true" : "returns false");
    if (m_isProbing)
        return;
    m_witness.End(m_current, thread.result);
    if (m_witness.Possible().empty())
        Fail("the rules do not explain this result");
}

/// When nobody is in the middle of a call, those who sleep have to.
void Scheduler::Rest()
{
    std::array<Rested, MaxThreads> threads{};
    for (std::size_t index = 0; index < m_prober; ++index)
    {
        Thread const &thread = m_threads[index];
        if (thread.state == Thread::Running)
            return;
        if (thread.state == Thread::Asleep)
            threads[index] = thread.deadline == Never ? Rested::Asleep : Rested::AsleepAWhile;
    }
    m_witness.Rest(threads);
    if (m_witness.Possible().empty())
        Fail("the rules do not explain who sleeps");
}

/// Whether a thread sleeps, and others are in the middle of calls. If one of them has been woken, it will see
/// to the others.
bool Scheduler::MayProbe() const
{
    auto const isAny = [this](auto condition)
    { return std::any_of(m_threads.begin(), m_threads.end() - 1, condition); };
    auto const runs = [](Thread const &thread) { return thread.state == Thread::Running; };
    return isAny(runs) && !isAny([&](Thread const &thread) { return runs(thread) && thread.hasSlept; }) &&
           isAny([](Thread const &thread)
                 { return thread.state == Thread::Asleep && thread.deadline == Never; });
}

/// Sees whether there is something to be taken, and nobody wakes a sleeper before the end of its call.
void Scheduler::Probe()
{
    m_isProbing = true;
    m_hasWoken = false;
    m_current = m_prober;
    Go();
    if (!m_threads[m_prober].result)
        return;
    for (m_current = 0; m_current < m_prober; ++m_current)
    {
        for (int steps = 0; steps < 100 && m_threads[m_current].state == Thread::Running && !m_hasWoken;
             ++steps)
            Go();
    }
    if (!m_hasWoken)
        Fail("a thread sleeps for what is there to be taken, and nobody is on the way to wake it");
}

std::uint64_t Scheduler::State() const
{
    Hash state;
    state.Add(s_heap.data(), s_heap.data() + s_heapUsed);
    for (Thread const &thread : m_threads)
    {
        state.Add(thread.top, thread.stack.get() + StackWords);
        state.Add(thread.state);
        if (thread.state == Thread::Running)
            state.Add(thread.isLate ? 2 : thread.hasSlept);
        if (thread.state != Thread::Asleep)
            continue;
        state.Add(reinterpret_cast<std::uint64_t>(thread.word));
        state.Add(thread.deadline);
    }
    state.Add(m_now);
    state.Add(static_cast<std::uint64_t>(m_wakesForNoReason));
    for (Situation const &situation : m_witness.Possible())
    {
        std::uint64_t bytes = 0;
        static_assert(sizeof situation <= sizeof bytes);
        std::memcpy(&bytes, &situation, sizeof situation);
        state.Add(bytes);
    }
    return state.Value();
}

/// Knows the state from now on.
bool Scheduler::IsKnown(std::uint64_t state)
{
    if (std::find(m_statesAlone.begin(), m_statesAlone.end(), state) != m_statesAlone.end())
        Fail("a thread goes round and round while the others stand still");
    m_statesAlone.push_back(state);
    bool const isRepeating = m_depth < m_path.size();
    return !isRepeating && !m_known.insert(state).second;
}

std::size_t Scheduler::Choose(std::size_t count)
{
    if (count == 1)
        return 0;
    if (m_depth == m_path.size())
        m_path.push_back({0, count});
    return m_path[m_depth++].chosen;
}

void Scheduler::Note(std::size_t thread, char const *what)
{
    m_trace.push_back({thread, what, {}, 0});
}

void Scheduler::Fail(char const *what)
{
    std::ostringstream text;
    text << what << '\n';
    for (TraceLine const &line : m_trace)
    {
        text << "    thread " << line.thread + 1 << ": " << line.what;
        if (line.site.file)
            text << ", " << std::strrchr(line.site.file, '/') + 1 << ':' << line.site.line << ", finds "
                 << line.found;
        text << '\n';
    }
    m_findings.failure = text.str();
}

// The functions below run on the stacks of the threads.

void Scheduler::Step(char const *operation, Site site)
{
    Thread &thread = m_threads[m_current];
    if (!thread.mayStep && m_current != m_prober)
        Yield();
    thread.mayStep = false;
    thread.step = {m_current, operation, site, 0};
}

void Scheduler::Saw(std::uint64_t value)
{
    m_threads[m_current].step.found = value;
}

/// Returns false when the deadline has passed. As the kernel does it, the word is compared first.
bool Scheduler::Sleep(std::uint32_t const *word, std::uint32_t expected, Time deadline, Site site)
{
    Step("sleeps", site);
    Saw(*word);
    if (*word != expected && !IsPlanted(Fault::BlindSleep, site))
        return true;
    if (deadline <= m_now)
        return false;
    Thread &thread = m_threads[m_current];
    thread.state = Thread::Asleep;
    thread.hasSlept = true;
    thread.word = word;
    thread.deadline = deadline;
    Yield();
    return !std::exchange(thread.isLate, false);
}

void Scheduler::Wake(std::uint32_t const *word, Sleepers sleepers, Site site)
{
    Step("wakes", site);
    auto const sleeps = [word](Thread const &thread)
    { return thread.state == Thread::Asleep && thread.word == word; };
    auto const count = std::count_if(m_threads.begin(), m_threads.end(), sleeps);
    if (count == 0 || IsPlanted(Fault::LostWake, site))
        return;
    std::size_t const chosen = sleepers == Sleepers::One ? Choose(static_cast<std::size_t>(count)) : 0;
    std::size_t place = 0;
    for (Thread &thread : m_threads)
    {
        if (sleeps(thread) && (sleepers == Sleepers::All || place++ == chosen))
            thread.state = Thread::Running;
    }
    m_hasWoken = true;
    Saw(static_cast<std::uint64_t>(count));
}

bool Scheduler::IsPlanted(Fault fault, Site site)
{
    Plant const here{fault, site};
    std::vector<Plant> &plants = m_findings.plants;
    if (std::find(plants.begin(), plants.end(), here) == plants.end())
        plants.push_back(here);
    return here == m_plant;
}

void const *Scheduler::CurrentThread() const
{
    return &m_threads[m_current];
}

} // namespace explorer

[[gnu::noinline]] void *operator new(std::size_t size)
{
    using namespace explorer;
    if (!s_isMakingObject)
    {
        if (void *const memory = std::malloc(size))
            return memory;
        throw std::bad_alloc();
    }
    std::uint64_t *const memory = s_heap.data() + s_heapUsed;
    s_heapUsed += (size + 15) / 16 * 2;
    if (s_heapUsed > s_heap.size())
        throw std::bad_alloc();
    return memory;
}

[[gnu::noinline]] void operator delete(void *memory) noexcept
{
    if (memory < explorer::s_heap.data() || memory >= explorer::s_heap.data() + explorer::s_heap.size())
        std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    operator delete(memory);
}
