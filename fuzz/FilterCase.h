// One case for the module: all that lies outside of it, and what it is asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// A configuration that answers by whole path, so that it may hold what no file could.
struct Configuration {
    bool exists = true;
    std::map<std::string, std::vector<std::string>> nodes; ///< The names of the child nodes, by path.
    std::set<std::string> withoutNames;                    ///< Nodes that have no list of names to give.
    std::map<std::string, std::string> values;
    std::map<std::string, std::int32_t> integers;
};

struct Grant {
    std::string name;
    std::uint32_t value = 0;
    std::optional<std::string> resource;
    bool isConditional = false;
};

struct User {
    std::string name;
    std::string group;
    std::map<std::string, std::string> attributes;
    std::vector<Grant> grants;
};

enum class Interface { connects, refuses, isMissing };

enum class Road { login, ownLogin, administration };

struct Request {
    Road road = Road::login;
    std::string user;
    std::string address;
    bool hasInterface = true;     ///< With ownLogin.
    bool hasList = true;          ///< With administration.
    unsigned failedResources = 0; ///< The query for resources, counted from 1, that fails; 0: none.
    unsigned missingDetails = 0;  ///< Likewise of those for the user's details.
};

/// What only a host that derives from the manager can ask.
struct Step {
    std::string text; ///< To be split at commas.
    std::vector<std::string> values;
    Grant sought;
};

struct Case {
    std::string repository;
    Configuration configuration;
    std::vector<User> users; ///< At least one.
    int logLevel = 7;
    bool connects = true;
    Interface securityManager = Interface::connects;
    Interface administration = Interface::connects;
    std::vector<Request> requests;
    std::vector<Step> steps;

    /// Counts up to a NUL; null when there is none of this name.
    const User* FindUser(const std::string& name) const;
};

/// Any bytes make a case, and most make one in which much happens.
Case MakeCase(const std::uint8_t* data, std::size_t size);

/// For a person to read.
std::string Shown(const Case& shownCase);
