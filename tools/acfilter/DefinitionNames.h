// The names under which an administrator knows what the manager holds without names.
#pragma once

#include <string>
#include <vector>

struct FunctionName {
    std::string name; ///< As configured, registered or not; empty: the condition has no values function.
    std::string configuration;
};

struct DefinitionNames {
    std::string field;
    std::vector<FunctionName> functions; ///< Of each condition.
};

/// Of each field definition that a manager of `repositoryName` holds, in its order. Throws as reading the configuration
/// does.
std::vector<DefinitionNames> NamesOfDefinitions(const std::string& repositoryName);
