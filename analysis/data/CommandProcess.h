// A program that answers lines on its standard input with lines on its standard output.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace secm::analysis {

/// Its process ends with the object. One thread at a time.
class CommandProcess {
public:
    enum class End { answered, timedOut, ended };

    /// Starts the first of `words`, which is sought in PATH, with the others as its arguments. Throws DataError.
    explicit CommandProcess(const std::vector<std::string>& words);
    CommandProcess(const CommandProcess&) = delete;
    CommandProcess& operator=(const CommandProcess&) = delete;

    /// Lets the program see the end of its input, and ends it when it then stays.
    ~CommandProcess();

    /// Sends one line and waits for one. `answer` has no line end. Throws DataError for a line of more than 16 MiB, and
    /// std::system_error.
    End Ask(const std::string& question, std::chrono::seconds limit, std::string& answer);

    /// After Ask gave `ended`: how the program ended, and the last that it wrote to its standard error.
    std::string LastWords();

private:
    void Start(const std::vector<std::string>& words);
    bool ReadAvailable(int descriptor, std::string& text);
    bool Reap(std::chrono::milliseconds patience);

    pid_t process = -1;
    int input = -1; // of the program; likewise the others
    int output = -1;
    int errors = -1;
    int status = 0;
    std::string received; // behind the last answer
    std::string said;     // the end of what it wrote to its standard error
};

} // namespace secm::analysis
