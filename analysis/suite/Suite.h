// A suite of rule tests, as its file says.
#pragma once

#include "analysis/Export.h"
#include "analysis/trace/Trace.h"
#include "platform/configuration/CFG_Listing.h"
#include "platform/security_manager/PermissionBase.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace secm::analysis {

/// A suite that cannot be used. what() has the form PATH:LINE:COLUMN: what is wrong; what to do.
class SECM_ANALYSIS_EXPORT SuiteError : public std::runtime_error {
public:
    SuiteError(const CFG_Place& place, const std::string& text);
};

/// The users of a suite, in place of a security database.
struct SuiteUsers {
    struct User {
        std::string group; ///< Empty: none.
        std::map<std::string, std::string> attributes;
        std::vector<PermissionBase> grants;
    };

    std::map<std::string, User> users;
    std::map<std::string, std::vector<PermissionBase>> groups; ///< What is granted to each.
};

/// Where the rows of a suite are. One of the first three is not empty.
struct SuiteData {
    std::string statements; ///< The path of a file of SQL statements, which make a database of their own.
    std::string connection; ///< As in DataPlace.
    std::string command;    ///< Without "command:".
    std::string table;
    std::string key;
    CFG_Place place; ///< Of the first three.
};

/// What a test says about one field.
struct ExpectedValues {
    enum class Kind { all, none, values };

    std::string field;
    Kind kind = Kind::values;
    std::set<std::string> values; ///< As the filter gets them, after the values function.
    CFG_Place place;
};

/// What a test does not name is not asserted.
struct SuiteTest {
    std::string name;
    std::vector<std::string> users;
    std::string address; ///< From which the users log in.
    std::optional<Outcome> outcome;
    std::vector<ExpectedValues> values;
    std::optional<std::string> filter;
    std::optional<std::uint64_t> count;
    std::vector<std::string> sees;  ///< Keys of rows.
    std::vector<std::string> hides; ///< Likewise.
    CFG_Place place;

    bool NeedsRows() const { return count || !sees.empty() || !hides.empty(); }
};

/// Paths in it can be opened from the current folder.
struct Suite {
    std::string file;
    std::string configuration;
    std::string repository;
    std::optional<std::string> security; ///< A connection text; no value: `users` take its place.
    SuiteUsers users;
    std::optional<SuiteData> data;
    std::vector<SuiteTest> tests; ///< In their order.
    CFG_Place repositoryPlace;
};

/// Throws SuiteError: the file cannot be read, a key is unknown, a value has another type, a test asserts nothing ...
SECM_ANALYSIS_EXPORT Suite ReadSuite(const std::string& file);

/// Empty when a suite has a test of this name; else a sentence that says so and names the nearest.
SECM_ANALYSIS_EXPORT std::string WhyNoTest(const std::vector<Suite>& suites, const std::string& name);

} // namespace secm::analysis
