// Reads what the module does not keep of a definition: the field's name, the place of its table, and why it was left
// out.
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
    CFG_Place place; ///< No file where the configuration library tells no places.
};

/// The definitions of the configuration that is in force for the calling thread when the object is made. One object
/// serves any number of repositories; each is found without looking at the others.
class DefinitionReader {
public:
    /// Throws as reading the configuration does.
    DefinitionReader();

    /// The tables that define fields for `repository`, in the order of the configuration.
    std::vector<DefinitionTable> TablesOf(const std::string& repository) const;

private:
    std::map<std::string, std::vector<DefinitionTable>, std::less<>> tables; // by repository
};

/// Whether the module takes the definition at this node. The reasons come in the order of the module's reading; empty:
/// it takes it.
std::vector<OmissionReason> ReasonsToOmit(const CFG_RepositoryServices& definition);

/// The text of `key` up to its first NUL, as the module reads it; empty when it is missing.
std::string TextOf(const CFG_RepositoryServices& node, const std::string& key);

} // namespace secm::analysis
