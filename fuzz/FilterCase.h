// One case for the module: what lies outside of it, and what it is asked.
#pragma once

#include "testing/Outside.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace secm::fuzzing {

enum class Road { login, ownLogin, administration };

struct Request {
    Road road = Road::login;
    std::string user;
    std::string address;
    bool hasInterface = true;     ///< With ownLogin.
    bool hasList = true;          ///< With administration.
    unsigned failedResources = 0; ///< The question for resources that fails, counted from 1; 0: none.
    unsigned missingDetails = 0;  ///< The question for the user's details that gets null, likewise.
};

/// Asked of single steps, by a class that derives from the manager.
struct Step {
    std::string text; ///< To be split at commas.
    std::vector<std::string> values;
    PermissionBase sought{"", 0, nullptr, false};
};

struct Case {
    std::string repository;
    testing::Configuration configuration;
    testing::Users users; ///< At least one.
    int logLevel = 7;
    bool connects = true;
    testing::Offer securityManager = testing::Offer::connects;
    testing::Offer administration = testing::Offer::connects;
    std::vector<Request> requests;
    std::vector<Step> steps;
};

/// Makes a case of any bytes. Most bytes make one whose requests reach the composition.
Case MakeCase(const std::uint8_t* data, std::size_t size);

/// The case as text, to be read.
std::string Shown(const Case& shownCase);

} // namespace secm::fuzzing
