#include "tools/acfilter/commands/Configuration.h"

#include "platform/configuration/CFG_RepositoryServices.h"
#include "platform/configuration/ConfigurationPaths.h"
#include "tools/acfilter/commands/Errors.h"

#include <fmt/format.h>

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace secm::acfilter {

namespace {

void RequirePath(const std::string& path, const char* option)
{
    if (path.empty()) {
        throw std::runtime_error(fmt::format("no configuration: the path given to {} is empty", option));
    }
}

// Runs `read`; when memory runs out, the error names the configuration.
template <class Read>
auto Reading(const std::string& path, Read read)
{
    try {
        return read();
    } catch (const std::bad_alloc&) {
        throw std::runtime_error(fmt::format("{}: cannot be read: {}", path, memoryRanOut));
    }
}

bool LibraryHasCandidates()
{
    return CFG_Factory::Read != nullptr;
}

// With a configuration library of a host's own, which reads what CFG_REPOSITORY names and nothing else.
void RequireInForce(const std::string& path)
{
    const char* configured = std::getenv("CFG_REPOSITORY");
    const bool isConfigured = configured != nullptr && configured == path;
    if (!isConfigured || Reading(path, [] { return CFG_Factory::GetRepositoryServices(); }) == nullptr) {
        throw std::runtime_error(fmt::format("{}: the configuration library in use reads only what CFG_REPOSITORY "
                                             "names; set that variable instead of --config",
                                             path));
    }
}

} // namespace

std::shared_ptr<const CFG_Candidate> ReadConfiguration(const std::string& path, const char* option,
                                                       const CFG_FileObserver& observe)
{
    RequirePath(path, option);
    if (!LibraryHasCandidates()) {
        throw std::runtime_error("the configuration library in use cannot read a configuration without putting it in "
                                 "force, which diff and --format html need");
    }
    return Reading(path, [&] { return CFG_Factory::Read(path, observe); });
}

std::shared_ptr<const CFG_Candidate> UseConfiguration(const HostOptions& options)
{
    RequirePath(options.configuration, "--config");
    if (!LibraryHasCandidates()) {
        RequireInForce(options.configuration);
        return nullptr;
    }
    auto candidate = ReadConfiguration(options.configuration, "--config");
    CFG_Factory::PutInForce(candidate);
    return candidate;
}

void RequireRepository(const std::string& repository, const std::string& path)
{
    std::string table = configuration_paths::repositories;
    table.pop_back(); // the separator
    const std::unique_ptr<CFG_NameList> names(CFG_Factory::GetRepositoryServices()->GetChildNames(RWCString(table)));
    std::string others;
    for (int index = 0; names && index < names->GetCount(); ++index) {
        if (names->GetName(index) == repository) {
            return;
        }
        others += fmt::format("{}'{}'", others.empty() ? "" : ", ", names->GetName(index));
    }
    throw std::runtime_error(
        others.empty()
            ? fmt::format("{}: there is no repository '{}', nor any other; add its table under [{}]", path, repository,
                          configuration_paths::Dotted(table))
            : fmt::format("{}: there is no repository '{}'; the repositories are: {}", path, repository, others));
}

} // namespace secm::acfilter
