/// @file
/// What Clang's thread-safety analysis (`-Wthread-safety`) needs to know about locks and what they guard. The
/// macros are empty for other compilers.
///
/// The locks of the library are annotated. A host that states which lock guards a member is warned, when it
/// is compiled, of every access without that lock:
///
///     class Account
///     {
///         TRecursiveMutex m_mutex;
///         int m_balance VANSYS_GUARDED_BY(m_mutex) = 0;
///     };
///
/// The analysis follows calls of `Lock`, `lock` and the like. It follows the guards of the standard library
/// only where that library annotates them: libc++ does, on request, libstdc++ does not. It looks at one
/// function at a time and knows no recursion: that a function locks again what its caller holds is not seen,
/// and locking twice in one function is warned of.
#pragma once

#if defined(__clang__)
#    define VANSYS_THREAD_ANNOTATION(...) __attribute__((__VA_ARGS__))
#else
#    define VANSYS_THREAD_ANNOTATION(...)
#endif

/// A class whose objects are locks; `name` ("mutex") is what warnings call them.
#define VANSYS_CAPABILITY(name) VANSYS_THREAD_ANNOTATION(capability(name))

/// A class whose objects hold a lock from constructor to destructor.
#define VANSYS_SCOPED_CAPABILITY VANSYS_THREAD_ANNOTATION(scoped_lockable)

/// A member, or what a member points at, that is used only with the lock held.
#define VANSYS_GUARDED_BY(lock) VANSYS_THREAD_ANNOTATION(guarded_by(lock))
#define VANSYS_PT_GUARDED_BY(lock) VANSYS_THREAD_ANNOTATION(pt_guarded_by(lock))

/// A function that its caller may call only with the lock held: for writing, for reading, or not at all.
#define VANSYS_REQUIRES(...) VANSYS_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define VANSYS_REQUIRES_SHARED(...) VANSYS_THREAD_ANNOTATION(requires_shared_capability(__VA_ARGS__))
#define VANSYS_EXCLUDES(...) VANSYS_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

/// A function that takes the lock, or gives it back; without an argument, the lock is the object itself.
#define VANSYS_ACQUIRE(...) VANSYS_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define VANSYS_ACQUIRE_SHARED(...) VANSYS_THREAD_ANNOTATION(acquire_shared_capability(__VA_ARGS__))
#define VANSYS_RELEASE(...) VANSYS_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define VANSYS_RELEASE_SHARED(...) VANSYS_THREAD_ANNOTATION(release_shared_capability(__VA_ARGS__))

/// A function that returns the first argument, true or false, when it has taken the lock.
#define VANSYS_TRY_ACQUIRE(...) VANSYS_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define VANSYS_TRY_ACQUIRE_SHARED(...) VANSYS_THREAD_ANNOTATION(try_acquire_shared_capability(__VA_ARGS__))

/// A function that the analysis is to leave alone, with a comment that says why.
#define VANSYS_NO_THREAD_SAFETY_ANALYSIS VANSYS_THREAD_ANNOTATION(no_thread_safety_analysis)
