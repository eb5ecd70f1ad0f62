/// @file
/// What a lock lets other threads do.
#pragma once

#include <future>
#include <mutex>
#include <shared_mutex>
#include <string>

/// What another thread may do at this moment: "", "read" or "read write".
template <class Lock>
std::string AccessElsewhere(Lock &lock)
{
    auto const access = [&lock]() -> std::string
    {
        if (!std::shared_lock(lock, std::try_to_lock))
            return "";
        return std::unique_lock(lock, std::try_to_lock) ? "read write" : "read";
    };
    return std::async(std::launch::async, access).get();
}
