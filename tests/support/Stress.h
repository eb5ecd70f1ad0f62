/// @file
/// Several threads that do the same things in random order.
#pragma once

#include "support/Latch.h"

#include <chrono>
#include <random>
#include <thread>
#include <vector>

/// Each thread draws from a sequence of its own, the same in every run.
using StressRandom = std::minstd_rand;

/// Starts `count` threads at one moment. Each calls `round(random)` over and over, for half a second. More
/// threads than the machine has cores make it interrupt them at any point.
template <class Round>
void RunStress(int count, Round round)
{
    Latch start(count);
    std::vector<std::thread> threads;
    for (int number = 1; number <= count; ++number)
    {
        threads.emplace_back(
            [&start, &round, number]
            {
                StressRandom random(static_cast<StressRandom::result_type>(number));
                start.ArriveAndWait();
                auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
                while (std::chrono::steady_clock::now() < end)
                {
                    for (int i = 0; i < 100; ++i)
                        round(random);
                }
            });
    }
    for (std::thread &thread : threads)
        thread.join();
}
