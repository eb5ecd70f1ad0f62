// What Clang's thread-safety analysis has to say about the locks: check.sh compiles this with FAULT set to
// each of the numbers below, and without. The comment behind a number is what the warning must contain.

#include "vansys/TReadWriteLock.h"
#include "vansys/TRecursiveMutex.h"

namespace
{

class Account
{
public:
    void Deposit(int amount)
    {
#if FAULT != 1 // writing variable 'm_balance' requires holding mutex 'm_mutex' exclusively
        m_mutex.Lock();
#endif
        m_balance += amount;
#if FAULT != 2 // mutex 'm_mutex' is still held at the end of function
        m_mutex.Unlock();
#endif
    }

    void DepositIfFree(int amount)
    {
#if FAULT == 3 // writing variable 'm_balance' requires holding mutex 'm_mutex' exclusively
        if (!m_mutex.try_lock())
#else
        if (m_mutex.TryLock())
#endif
        {
            m_balance += amount;
            m_mutex.unlock();
        }
    }

    int Limit()
    {
#if FAULT == 4 // releasing mutex 'm_lock' using shared access, expected exclusive access
        m_lock.Lock();
#elif FAULT == 5 // releasing mutex 'm_lock' that was not held
        if (m_lock.try_lock_shared())
            return 0;
#else
        m_lock.LockRead();
#endif
        int const limit = m_limit;
        m_lock.UnlockRead();
        return limit;
    }

    void SetLimit(int limit)
    {
#if FAULT == 6 // writing variable 'm_limit' requires holding mutex 'm_lock' exclusively
        m_lock.lock_shared();
#else
        m_lock.lock();
#endif
        m_limit = limit;
        m_lock.unlock();
    }

    void Clear()
    {
#if FAULT != 7 // calling function 'ClearLocked' requires holding mutex 'm_mutex' exclusively
        m_mutex.LockRead();
#endif
        ClearLocked();
        m_mutex.UnlockRead();
    }

private:
    void ClearLocked() VANSYS_REQUIRES(m_mutex)
    {
        m_balance = 0;
    }

    TRecursiveMutex m_mutex;
    TReadWriteLock m_lock;
    int m_balance VANSYS_GUARDED_BY(m_mutex) = 0;
    int m_limit VANSYS_GUARDED_BY(m_lock) = 0;
};

} // namespace

int main()
{
    Account account;
    account.Deposit(1);
    account.DepositIfFree(2);
    account.SetLimit(account.Limit() + 1);
    account.Clear();
}
