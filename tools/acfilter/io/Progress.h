// A line on the terminal that shows how many users or tests are done, while the answers go somewhere else.
#pragma once

#include <chrono>

namespace secm::acfilter {

/// Shows the line only when standard error is a terminal and no answers appear on it meanwhile: they wait for the end
/// or go to a file of their own (`answersAppear` is false), or standard output is a file. The destructor removes the
/// line.
class Progress {
public:
    /// `unit` is what is counted, in the plural; it must outlive the object.
    explicit Progress(bool answersAppear = true, const char* unit = "users");
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void CountOne();
    unsigned long long Count() const { return count; }

private:
    bool isWanted;
    bool isShown = false;
    const char* countedUnit;
    unsigned long long count = 0;
    std::chrono::steady_clock::time_point nextUpdate;
};

} // namespace secm::acfilter
