#pragma once

#include <cstddef>
#include <functional>

/// Number of threads to work with: `wanted`, or one a core where that is 0.
int ThreadCount(int wanted);

/// Runs the work on `count` threads, the caller's among them, each with its own number from 0 (the caller's);
/// returns when all have ended. Throws what one of them threw. Where the system has no more threads to give,
/// fewer run: the work must be such that number 0 alone completes it.
void RunOnThreads(int count, const std::function<void(int)>& work);

/// Calls the function for the items 0 to count - 1, in this order, each on whichever of the threads is free;
/// it is told on which. None outlives the call; the first exception is thrown again at the end.
void ForEachOnThreads(std::size_t count, int threads,
                      const std::function<void(int thread, std::size_t item)>& work);
