// The command line's list of users, against a second reading of it that looks at one byte after the other. An input
// that begins with "!" is a list that breaks off after its last byte, as on a broken disk.
#include "fuzz/Fuzzing.h"
#include "tools/acfilter/UserList.h"

#include <stdexcept>
#include <streambuf>
#include <vector>

namespace {

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
            reading.error = unreadable; // why depends on the system
        }
    }
    return reading;
}

Reading Expected(const std::string& content, bool breaksOff)
{
    Reading reading;
    std::string name;
    unsigned line = 1;
    bool hasNul = false;
    for (const char byte : content) {
        if (byte == '\0') {
            hasNul = true;
        }
        if (byte != '\n') {
            name += byte;
            continue;
        }
        if (hasNul) {
            reading.error = "PLACE:" + std::to_string(line) + ": a user name cannot hold a NUL byte";
            return reading;
        }
        if (!name.empty() && name[name.size() - 1] == '\r') {
            name = name.substr(0, name.size() - 1);
        }
        if (!name.empty()) {
            reading.names.push_back(name);
        }
        name = "";
        ++line;
    }
    if (breaksOff) {
        reading.error = unreadable;
    } else if (hasNul) {
        reading.error = "PLACE:" + std::to_string(line) + ": a user name cannot hold a NUL byte";
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
