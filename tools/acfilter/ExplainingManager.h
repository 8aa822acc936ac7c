// A manager that keeps account of every step of a request.
#pragma once

#include "tools/acfilter/Account.h"

class ExplainingManager : public WatchingManager {
public:
    using WatchingManager::WatchingManager;

    /// Asks, and tells how the answer came about. Throws what a request throws.
    Account Explain(const Request& request);

    /// With what was revoked by the last request.
    const WhatIf& Tried() const { return whatIf; }

protected:
    void NoticeUser(UserDetailsInterface* user) override;
    void NoticeField(bool isHeld) override;
    void NoticeResources(bool areTold, const std::vector<std::string>& resources) override;
    void NoticeAttribute(const char* name, const char* value) override;

    std::string HandleSingleConditionForUser(const ConditionDefinition& condition,
                                             const std::vector<std::string>& values,
                                             UserDetailsInterface* userDetails) override;
    std::string HandleSingleCondition(const ConditionDefinition& condition, const std::vector<std::string>& values,
                                      SecurityManagerInterface* secmInterface) override;
    void ReplaceSingleValueForUser(std::string& value, const FieldDefinition& field,
                                   UserDetailsInterface* userDetails) override;
    void ReplaceSingleValue(std::string& value, const FieldDefinition& field,
                            SecurityManagerInterface* secmInterface) override;
    std::string ApplyValuesFunction(const std::string& value, const ConditionDefinition& condition) override;

private:
    std::string ClauseOf(const FieldAccount& field) const;

    Account account;
    std::vector<AttributeAccount> asked; // since it was emptied
};
