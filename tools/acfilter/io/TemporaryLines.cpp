#include "tools/acfilter/io/TemporaryLines.h"

#include "platform/Descriptor.h"

#include <fcntl.h>
#include <fmt/format.h>
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

// Opens a file without a name for reading and writing. The result is not open when that fails.
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

TemporaryLines::TemporaryLines(const std::string& folder) : place(folder.empty() ? TemporaryFolder() : folder)
{
    const Descriptor unnamed = UnnamedFile(place);
    if (!unnamed.IsOpen()) {
        Refuse("written");
    }
    file.open("/proc/self/fd/" + std::to_string(unnamed.Get()), std::ios::in | std::ios::out | std::ios::binary);
}

void TemporaryLines::Write(std::string_view lines)
{
    if (!file.write(lines.data(), static_cast<std::streamsize>(lines.size()))) {
        Refuse("written");
    }
}

bool TemporaryLines::Read(std::string& line)
{
    if (!isBeingRead && !file.seekg(0)) { // seekg writes the buffer first
        Refuse("written");
    }
    isBeingRead = true;
    if (std::getline(file, line)) {
        return true;
    }
    if (file.bad()) {
        Refuse("read");
    }
    return false;
}

void TemporaryLines::ForEachLine(const std::function<void(std::string_view line)>& handle)
{
    for (std::string line; Read(line);) {
        handle(line);
    }
}

void TemporaryLines::Refuse(const char* what) const
{
    throw std::runtime_error(
        fmt::format("a temporary file in '{}' cannot be {}: {}; make room there, or set TMPDIR to another folder",
                    place, what, std::strerror(errno)));
}

} // namespace secm::acfilter
