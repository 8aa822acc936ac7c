// Commands and everything that they print, as blocks of text in tests/cases/commands:
//
//     === NameOfTheCase
//     # A comment of the shell, where the name does not say what the case guards.
//     acfilter filter $sample hugo
//     --- status 0
//     --- stdout
//     department = ('Legal')
//     --- stderr
//
// The first part is a shell script; prelude.sh holds what it can use. A part "stdout" or "stderr" that is left out, or
// empty, means that nothing is printed. Empty lines at the end of a part do not count. What a text cannot show, or what
// differs from run to run, stands as a placeholder: see Visible.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace secm::testing {

struct CommandBlock {
    std::string name;
    std::string place; // FILE:LINE
    std::string script;
    int status = -1;
    std::string output;
    std::string errors;
};

/// Names the block in failures.
inline void PrintTo(const CommandBlock& block, std::ostream* output)
{
    *output << block.place;
}

/// The blocks of one file. Throws std::runtime_error, which begins with FILE:LINE, for a malformed block.
std::vector<CommandBlock> ParseCommandBlocks(const std::string& file, std::istream& input);

/// The blocks of all files in tests/cases/commands, in the order of the files' names. Throws also for a name that two
/// blocks have.
std::vector<CommandBlock> ReadCommandBlocks();

/// The text as blocks show it:
/// <FOLDER>     the scratch folder; <FOLDER NAME>: its name alone, as in names of databases
/// <LIBRARIES>  the folder of the libraries under test
/// <TIME>       a time of day with its date
/// <THREAD>     the number of the thread that wrote a log message
/// <LINE>       the number of a source line in a log message
/// <0xNN>       a control character, a byte that is not UTF-8, or a blank at the end of a line
/// <EMPTY>      the last line, when it is empty
/// <END>        the end of the text, when the last line has no line end
std::string Visible(const std::string& text, const std::string& scratchFolder);

} // namespace secm::testing
