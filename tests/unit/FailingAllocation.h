#pragma once

/// Makes the allocation that is `count` allocations ahead fail, once; 0: none.
void FailAllocation(long count);

/// Whether it has failed since it was asked for.
bool AllocationHasFailed();

/// While it lives no allocation fails, nor counts: for destructors, which could not say so.
class AllocationsSucceed {
public:
    AllocationsSucceed();
    ~AllocationsSucceed();
    AllocationsSucceed(const AllocationsSucceed&) = delete;
    AllocationsSucceed& operator=(const AllocationsSucceed&) = delete;

private:
    long paused;
};
