// A second, plain implementation of the module, to compare answers with. It reads the case directly, copies texts
// freely and is slow. It shares no code with the module.
#pragma once

#include "fuzz/FilterCase.h"

namespace secm::fuzzing {

/// Texts of C interfaces end at their first NUL.
inline std::string UpToNul(const std::string& text)
{
    return text.substr(0, text.find('\0'));
}

class FilterModel {
public:
    /// Reads the configuration. The case must outlive the model.
    explicit FilterModel(const Case& ofCase);

    bool Connect();
    std::string Filter(const Request& request);
    const std::string& ListDelimiter() const { return settings.listDelimiter; }

    /// Single steps.
    std::vector<std::string> Split(const std::string& list) const;
    bool ListHolds(const std::vector<PermissionBase>& permissions, const PermissionBase& sought) const;
    std::vector<std::string> ListResources(const std::vector<PermissionBase>& permissions, const std::string& name,
                                           std::uint32_t bits) const;
    /// The n-th condition of all definitions, counted from 0; none when there are fewer.
    std::optional<std::string> FilledCondition(std::size_t n, const std::vector<std::string>& values,
                                               const testing::User& user) const;

    /// The expected record of calls: messages that the log level lets through, log-ins, log-outs and releases.
    std::vector<std::string> record;

private:
    struct Settings {
        std::string hideAll, standard, fieldDelimiter, singleOperator, multipleOperator;
        std::string listDelimiter, listPrefix, listSuffix;
    };
    struct Condition {
        std::string text;
        std::vector<std::string> mandatory;
        std::vector<std::string> replace;
        bool maps = false;
        std::map<std::string, std::string> table;
        std::string unknown; ///< What a value that is not in the table maps to.
    };
    struct Field {
        std::string permission;
        std::uint32_t bits = 0;
        std::string delimiter;
        std::string myField;
        std::vector<Condition> conditions;
    };

    void Log(int level, const std::string& function, const std::string& message);
    std::string WholeValue(const std::string& path) const;
    std::string Value(const std::string& path) const;
    std::vector<std::string> Names(const std::string& path) const;
    void ReadConfiguration();
    void ReadField(const std::string& name);
    std::vector<Condition> ReadConditions(const std::string& path);
    void ReadTable(Condition& condition, const std::string& function, const std::string& table);

    std::string FilterByLogin(const Request& request);
    std::string FilterOfOwnLogin(const Request& request);
    std::string FilterByName(const Request& request);
    std::string Compose(const Request& request, const testing::User& user, bool isByName);
    std::string Map(const Condition& condition, const std::string& value) const;
    std::string Fill(const Condition& condition, const std::vector<std::string>& values,
                     const testing::User& user) const;

    const Case& world;
    Settings settings;
    std::vector<Field> fields;
    bool hasSecurityManager = false;
    bool hasAdministration = false;
};

} // namespace secm::fuzzing
