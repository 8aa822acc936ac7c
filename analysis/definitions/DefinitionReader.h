// Reads what the module does not keep of a definition: the field's name, the place of its table, and the reason why
// the module leaves it out.
#pragma once

#include "analysis/definitions/Rules.h"

#include <map>
#include <string>
#include <vector>

class CFG_RepositoryServices;

namespace secm::analysis {

/// A table that defines a field for a repository.
struct DefinitionTable {
    std::string field;
    std::string path;
    CFG_Place place; ///< No file when the configuration library cannot list (CFG_ListEntries is null).
};

/// The definitions of the configuration that is in force for the calling thread when the object is made. Lists all
/// tables once, so that many repositories cost no more than one. Immutable: any thread may read it.
class DefinitionReader {
public:
    /// Throws what CFG_Factory::GetRepositoryServices throws. Without a configuration there are no definitions.
    DefinitionReader();

    /// The tables that define fields for `repository`, in the order of the configuration.
    std::vector<DefinitionTable> TablesOf(const std::string& repository) const;

private:
    std::map<std::string, std::vector<DefinitionTable>, std::less<>> tables; // by repository
};

/// Why the module leaves out the definition at this node, in the order in which it reads; empty when it takes it.
std::vector<OmissionReason> ReasonsToOmit(const CFG_RepositoryServices& definition);

/// The text of `key` up to its first NUL, as the module reads it; empty when it is missing.
std::string TextOf(const CFG_RepositoryServices& node, const std::string& key);

} // namespace secm::analysis
