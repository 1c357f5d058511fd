#pragma once

#include <functional>

/// Number of threads to work with: `wanted`, or one a core where that is 0.
int ThreadCount(int wanted);

/// Runs the work on `count` threads, the caller's among them, each with its own number from 0 (the caller's);
/// returns when all have ended. Throws what one of them threw. Where the system has no more threads to give,
/// fewer run: the work must be such that number 0 alone completes it.
void RunOnThreads(int count, const std::function<void(int)>& work);
