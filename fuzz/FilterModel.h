// The module once more, as plainly as it can be said: it reads the case instead of asking for it, copies texts freely,
// and decides everything in one place. Slow, and easy to compare with the documents.
#pragma once

#include "fuzz/FilterCase.h"

class FilterModel {
public:
    /// Reads the configuration. The case must outlive the model.
    explicit FilterModel(const Case& ofCase);

    bool Connect();
    std::string Filter(const Request& request);
    const std::string& ListDelimiter() const { return settings.listDelimiter; }

    /// The steps by themselves.
    std::vector<std::string> Split(const std::string& list) const;
    bool ListHolds(const std::vector<Grant>& grants, const Grant& sought) const;
    std::vector<std::string> ListResources(const std::vector<Grant>& grants, const std::string& name,
                                           std::uint32_t bits) const;
    /// Of the n-th condition of all, counted from 0; none when there are not as many.
    std::optional<std::string> FilledCondition(std::size_t n, const std::vector<std::string>& values,
                                               const User& user) const;

    /// What went outside, in order: messages that are wanted, log-ins and log-outs, releases.
    std::vector<std::string> journal;

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

    void Say(int level, const std::string& message);
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
    std::string Compose(const Request& request, const User& user, bool isByName);
    std::string Map(const Condition& condition, const std::string& value) const;
    std::string Fill(const Condition& condition, const std::vector<std::string>& values, const User& user) const;

    const Case& world;
    Settings settings;
    std::vector<Field> fields;
    bool hasSecurityManager = false;
    bool hasAdministration = false;
};
