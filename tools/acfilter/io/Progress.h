// A line on the terminal that tells how far a long list is, while the answers go somewhere else.
#pragma once

#include <chrono>

namespace secm::acfilter {

/// Silent unless standard error is a terminal and the answers do not appear on it: they wait for the end or go to a
/// file of their own (`answersAppear` is false), or standard output is a file. The line is gone when the object is.
class Progress {
public:
    explicit Progress(bool answersAppear = true);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void CountOne();
    unsigned long long Count() const { return count; }

private:
    bool isWanted;
    bool isShown = false;
    unsigned long long count = 0;
    std::chrono::steady_clock::time_point nextUpdate;
};

} // namespace secm::acfilter
