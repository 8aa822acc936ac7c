#pragma once

/// Makes one call of malloc, calloc or realloc return null, in any thread or library of the process: the `first`-th
/// from now on, with `isLasting` all later ones too. 0: none fails.
void FailMalloc(unsigned long first, bool isLasting);

/// Calls since FailMalloc.
unsigned long MallocCalls();

/// From now on, prints the number of each call whose stack is new.
void PrintMallocPlaces();
