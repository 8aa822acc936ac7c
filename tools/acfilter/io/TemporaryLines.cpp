#include "tools/acfilter/io/TemporaryLines.h"

#include "platform/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace secm::acfilter {

namespace {

using secm::platform::Descriptor;

std::string TemporaryFolder()
{
    const char* folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

// A file without a name, open for reading and writing; not open when there can be none.
Descriptor UnnamedFile(const std::string& folder)
{
    Descriptor unnamed(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!unnamed.IsOpen()) {
        std::string name = folder + "/.acfilter.XXXXXX";
        unnamed = Descriptor(mkostemp(name.data(), O_CLOEXEC));
        if (unnamed.IsOpen()) {
            unlink(name.c_str());
        }
    }
    return unnamed;
}

} // namespace

Spool::Spool(const std::string& folder) : place(folder.empty() ? TemporaryFolder() : folder)
{
    const Descriptor unnamed = UnnamedFile(place);
    if (!unnamed.IsOpen()) {
        Refuse("written");
    }
    file.open("/proc/self/fd/" + std::to_string(unnamed.Get()), std::ios::in | std::ios::out | std::ios::binary);
}

void Spool::Write(std::string_view lines)
{
    if (!file.write(lines.data(), static_cast<std::streamsize>(lines.size()))) {
        Refuse("written");
    }
}

void Spool::ForEachLine(const std::function<void(const std::string&)>& handle)
{
    if (!file.seekg(0)) { // which writes out what is left
        Refuse("written");
    }
    for (std::string line; std::getline(file, line);) {
        handle(line);
    }
    if (file.bad()) {
        Refuse("read");
    }
}

void Spool::Refuse(const char* what) const
{
    throw std::runtime_error("a temporary file in '" + place + "' cannot be " + what + ": " + std::strerror(errno) +
                             "; make room there, or set TMPDIR to another folder");
}

} // namespace secm::acfilter
