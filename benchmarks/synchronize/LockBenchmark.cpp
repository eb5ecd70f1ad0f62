#include "Rows.h"
#include "synchronize/Background.h"

#include "vansys/ReferenceCount.h"
#include "vansys/TReadWriteLock.h"
#include "vansys/TRecursiveMutex.h"
#include "vansys/TSemaphore.h"

#include <barrier>
#include <memory>
#include <mutex>
#include <semaphore>
#include <shared_mutex>
#include <thread>

#if defined(VANSYS_BENCH_QT)
#    include <QMutex>
#    include <QReadWriteLock>
#    include <QSemaphore>
#endif
#if defined(VANSYS_BENCH_BOOST)
#    include <boost/smart_ptr/intrusive_ptr.hpp>
#    include <boost/smart_ptr/intrusive_ref_counter.hpp>
#endif

namespace bench
{

namespace
{

/// Calls `operation` with an object that was made by `make` and is not copied.
template <class Make, class Operation>
auto OneThread(Make make, Operation operation)
{
    return [make, operation](benchmark::State &state)
    {
        Background const background;
        auto object = make();
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(&object);
            operation(object);
        }
    };
}

template <class Object>
auto Make()
{
    return [] { return Object(); };
}

/// Two threads lock and unlock one mutex as often as they can. One turn of the loop ends when both are done,
/// so that it does not pay for a lock to let one of them starve.
template <class Mutex>
void Contend(benchmark::State &state)
{
    constexpr int Rounds = 10000;
    Mutex mutex;
    std::barrier<> turn(2);
    bool isDone = false;
    int shared = 0;
    auto const work = [&]
    {
        for (int i = 0; i < Rounds; ++i)
        {
            mutex.lock();
            benchmark::DoNotOptimize(++shared);
            mutex.unlock();
        }
    };
    std::thread other(
        [&]
        {
            for (;;)
            {
                turn.arrive_and_wait();
                if (isDone)
                    return;
                work();
                turn.arrive_and_wait();
            }
        });
    for (auto _ : state)
    {
        turn.arrive_and_wait();
        work();
        turn.arrive_and_wait();
    }
    isDone = true;
    turn.arrive_and_wait();
    other.join();
}

void BenchmarkRecursiveMutex(Rows &rows)
{
    Target const target{1.0, {"QRecursiveMutex", "std::recursive_mutex"}};
    auto const lockAndUnlock = [](auto &mutex)
    {
        mutex.lock();
        mutex.unlock();
    };
    rows.push_back({"recursive mutex", "mutex: lock and unlock", target});
    AddCase(rows.back(), OwnName, OneThread(Make<TRecursiveMutex>(), lockAndUnlock));
    AddCase(rows.back(), "std::recursive_mutex", OneThread(Make<std::recursive_mutex>(), lockAndUnlock));
#if defined(VANSYS_BENCH_QT)
    AddCase(rows.back(), "QRecursiveMutex", OneThread(Make<QRecursiveMutex>(), lockAndUnlock));
#endif

    rows.push_back({"recursive mutex", "mutex: two threads, 10,000 times each", target});
    AddWallTimeCase(rows.back(), OwnName, Contend<TRecursiveMutex>);
    AddWallTimeCase(rows.back(), "std::recursive_mutex", Contend<std::recursive_mutex>);
#if defined(VANSYS_BENCH_QT)
    AddWallTimeCase(rows.back(), "QRecursiveMutex", Contend<QRecursiveMutex>);
#endif
}

void BenchmarkReadWriteLock(Rows &rows)
{
    auto const read = [](auto &lock)
    {
        lock.lock_shared();
        lock.unlock_shared();
    };
    auto const write = [](auto &lock)
    {
        lock.lock();
        lock.unlock();
    };
    rows.push_back({"read/write lock", "read/write lock: lock and unlock for reading",
                    Target{0.7, {"QReadWriteLock", "std::shared_mutex"}}});
    AddCase(rows.back(), OwnName, OneThread(Make<TReadWriteLock>(), read));
    AddCase(rows.back(), "std::shared_mutex", OneThread(Make<std::shared_mutex>(), read));
#if defined(VANSYS_BENCH_QT)
    AddCase(rows.back(), "QReadWriteLock",
            OneThread(Make<QReadWriteLock>(),
                      [](QReadWriteLock &lock)
                      {
                          lock.lockForRead();
                          lock.unlock();
                      }));
#endif

    rows.push_back({"read/write lock", "read/write lock: lock and unlock for writing", {}});
    AddCase(rows.back(), OwnName, OneThread(Make<TReadWriteLock>(), write));
    AddCase(rows.back(), "std::shared_mutex", OneThread(Make<std::shared_mutex>(), write));
#if defined(VANSYS_BENCH_QT)
    AddCase(rows.back(), "QReadWriteLock",
            OneThread(Make<QReadWriteLock>(),
                      [](QReadWriteLock &lock)
                      {
                          lock.lockForWrite();
                          lock.unlock();
                      }));
#endif
}

void BenchmarkSemaphore(Rows &rows)
{
    auto const releaseAndAcquire = [](auto &semaphore)
    {
        semaphore.release();
        semaphore.acquire();
    };
    rows.push_back({"semaphore", "semaphore: release and acquire",
                    Target{1.0, {"QSemaphore", "std::counting_semaphore"}}});
    AddCase(rows.back(), OwnName,
            OneThread([] { return TSemaphore::Construct(0); },
                      [](auto &semaphore)
                      {
                          semaphore->Release();
                          semaphore->Acquire();
                      }));
    AddCase(rows.back(), "std::counting_semaphore",
            OneThread([] { return std::counting_semaphore<>(0); }, releaseAndAcquire));
#if defined(VANSYS_BENCH_QT)
    AddCase(rows.back(), "QSemaphore", OneThread([] { return QSemaphore(0); }, releaseAndAcquire));
#endif
}

struct Counted : RefCntObject
{
};

struct Shared
{
};

#if defined(VANSYS_BENCH_BOOST)
struct Intrusive : boost::intrusive_ref_counter<Intrusive>
{
    virtual ~Intrusive() = default;
};
#endif

void BenchmarkPointer(Rows &rows)
{
    auto const copyAndDestroy = [](auto const &pointer)
    {
        auto copy = pointer;
        benchmark::DoNotOptimize(copy);
    };
    rows.push_back(
        {"counted pointer", "counted pointer: copy and destroy", Target{1.0, {"boost::intrusive_ptr"}}});
    AddCase(rows.back(), OwnName,
            OneThread([] { return RefCntPtr<Counted, RefCntObject>(new Counted); }, copyAndDestroy));
    AddCase(rows.back(), "std::shared_ptr", OneThread(std::make_shared<Shared>, copyAndDestroy));
#if defined(VANSYS_BENCH_BOOST)
    AddCase(rows.back(), "boost::intrusive_ptr",
            OneThread([] { return boost::intrusive_ptr<Intrusive>(new Intrusive); }, copyAndDestroy));
#endif
}

} // namespace

void AddLockRows(Rows &rows)
{
    BenchmarkRecursiveMutex(rows);
    BenchmarkReadWriteLock(rows);
    BenchmarkSemaphore(rows);
    BenchmarkPointer(rows);
}

} // namespace bench
