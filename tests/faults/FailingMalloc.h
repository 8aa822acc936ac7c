#pragma once

/// Makes malloc, calloc and realloc return null, for every thread and library of the process: the `first`-th call from
/// now on, and with `isLasting` all calls after it. 0: none.
void FailMalloc(unsigned long first, bool isLasting);

/// Calls since FailMalloc.
unsigned long MallocCalls();

/// Prints the number of each call from now on whose stack no call before it had.
void PrintMallocPlaces();
