// Reads any bytes as the command line's list of users and compares with a second, byte-wise implementation. An input
// that begins with "!" is a list whose reading fails after the last byte, as on a broken disk.
#include "fuzz/Fuzzing.h"
#include "tools/acfilter/io/UserList.h"

#include <stdexcept>
#include <streambuf>
#include <vector>

using namespace secm::fuzzing;

namespace {

using namespace secm::acfilter;

struct Reading {
    std::vector<std::string> names;
    std::string error;

    bool operator==(const Reading&) const = default;
};

class Source : public std::streambuf {
public:
    Source(std::string content, bool breaksOff) : bytes(std::move(content)), breaks(breaksOff) {}

protected:
    int_type underflow() override
    {
        if (eback() == nullptr && !bytes.empty()) {
            setg(bytes.data(), bytes.data(), bytes.data() + bytes.size());
            return traits_type::to_int_type(bytes.front());
        }
        if (breaks) {
            throw std::runtime_error("broken");
        }
        return traits_type::eof();
    }

private:
    std::string bytes;
    bool breaks;
};

const std::string unreadable = "PLACE: cannot be read: ";

Reading Read(const std::string& content, bool breaksOff)
{
    Reading reading;
    Source source(content, breaksOff);
    std::istream lines(&source);
    try {
        ForEachLine(lines, "PLACE", [&](const std::string& name) { reading.names.push_back(name); });
    } catch (const std::runtime_error& error) {
        reading.error = error.what();
        if (reading.error.starts_with(unreadable)) {
            reading.error = unreadable; // the reason depends on the system
        }
    }
    return reading;
}

std::string Refusal(unsigned line, bool hasNul)
{
    return "PLACE:" + std::to_string(line) +
           (hasNul ? ": a user name cannot hold a NUL byte; write the list in UTF-8"
                   : ": a carriage return ends no line here; end each line with LF or CR LF");
}

Reading Expected(const std::string& content, bool breaksOff)
{
    Reading reading;
    std::string name;
    unsigned line = 1;
    bool hasNul = false;
    bool hasCarriageReturn = false;
    const std::size_t start = content.substr(0, 3) == "\357\273\277" ? 3 : 0;
    for (std::size_t at = start; at < content.size(); ++at) {
        const char byte = content[at];
        if (byte == '\r' && content.substr(at, 2) != "\r\n") {
            hasCarriageReturn = true;
        }
        if (byte == '\0') {
            hasNul = true;
        }
        if (byte != '\n') {
            name += byte == '\r' ? "" : std::string(1, byte);
            continue;
        }
        if (hasNul || hasCarriageReturn) {
            reading.error = Refusal(line, hasNul);
            return reading;
        }
        if (!name.empty()) {
            reading.names.push_back(name);
        }
        name = "";
        ++line;
    }
    if (breaksOff) {
        reading.error = unreadable;
    } else if (hasNul || hasCarriageReturn) {
        reading.error = Refusal(line, hasNul);
    } else if (!name.empty()) {
        reading.names.push_back(name);
    }
    return reading;
}

std::string Text(const Reading& reading)
{
    std::string text;
    for (const std::string& name : reading.names) {
        text += "  name " + Shown(name) + "\n";
    }
    return text + "  error " + Shown(reading.error) + "\n";
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string content(Bytes(data, size));
    const bool breaksOff = content.starts_with('!');
    if (breaksOff) {
        content.erase(0, 1);
    }
    const Reading read = Read(content, breaksOff);
    const Reading expected = Expected(content, breaksOff);
    if (read != expected) {
        Fail("the list " + Shown(content) + (breaksOff ? ", broken off," : "") + " was read as\n" + Text(read) +
             "and not as\n" + Text(expected));
    }
    return 0;
}
