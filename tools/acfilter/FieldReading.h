// Why the module leaves a field definition out.
#pragma once

#include <string>
#include <vector>

class CFG_RepositoryServices;

struct DiscardReason {
    std::string key; ///< What is missing or wrong.
    std::string text;
};

/// What keeps the module from taking the definition at this node; empty: it takes it. The first comes first that the
/// module meets.
std::vector<DiscardReason> DiscardReasons(const CFG_RepositoryServices& definition);

/// The same in words; empty: the module takes the definition.
std::string InWords(const std::vector<DiscardReason>& reasons);
