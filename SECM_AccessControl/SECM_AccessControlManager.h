// The only implementation of the interface. Every step of filter building is virtual and called through the object,
// so that a tool can derive from the manager and observe the steps.
#pragma once

#include "SECM_AccessControl/AccessControlCallback.h"
#include "SECM_AccessControl/FieldDefinition.h"
#include "SECM_AccessControl/SECM_AccessControlInterface.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class CFG_RepositoryServices;
class PermissionBase;
class PermissionListInterface;
class SMADM_Interface;
class UserDetailsInterface;

class SECM_AccessControlManager : public SECM_AccessControlInterface {
public:
    /// Reads the configuration; throws as CreateInstance does. Does not call overrides of a derived class.
    explicit SECM_AccessControlManager(const std::string& repository);
    ~SECM_AccessControlManager() override;
    SECM_AccessControlManager(const SECM_AccessControlManager&) = delete;
    SECM_AccessControlManager& operator=(const SECM_AccessControlManager&) = delete;

    bool InitSecurityConnection(const char* connectionText, unsigned connectionValue) override;
    std::string GetAccessControlFilter(const std::string& userName) override;
    std::string GetAccessControlFilter(const std::string& userName, const std::string& ipAddress) override;
    std::string GetAccessControlFilter(SecurityManagerInterface* secmInterface) override;
    std::string GetValueMultiplicityDelimiter() override;

protected:
    /// Reads the settings and replaces the field definitions. Leaves out an invalid field definition and logs it; a
    /// missing setting is empty. Throws when the configuration cannot be read.
    virtual void ReadConfigurations();
    /// Destroys the field definitions; keeps the settings.
    virtual void ClearFieldDefinitions();
    /// Appends the entries of a comma-separated list to `entries`. Keeps blanks, skips empty entries.
    virtual void SplitCommaList(const std::string& text, std::vector<std::string>& entries);

    /// Fills the condition's template with `values`. The result is empty, and the condition adds nothing, when the
    /// user lacks a mandatory attribute or the security manager has no user details.
    virtual std::string HandleSingleConditionForUser(const ConditionDefinition& condition,
                                                     const std::vector<std::string>& values,
                                                     UserDetailsInterface* userDetails);
    virtual std::string HandleSingleCondition(const ConditionDefinition& condition,
                                              const std::vector<std::string>& values,
                                              SecurityManagerInterface* secmInterface);
    /// Replaces the value "%my%" with the attribute that the field's `myField` names, or with the empty text when
    /// the user lacks it. Changes no other value, and nothing when `myField` is empty.
    virtual void ReplaceSingleValueForUser(std::string& value, const FieldDefinition& field,
                                           UserDetailsInterface* userDetails);
    virtual void ReplaceSingleValue(std::string& value, const FieldDefinition& field,
                                    SecurityManagerInterface* secmInterface);
    /// Replaces `token` with the attribute that it names, or with the empty text when the user lacks it. `token`
    /// must not be empty.
    virtual void ResolveUserField(std::string& token, UserDetailsInterface* userDetails);
    /// Maps `value` with the condition's values function; returns it unchanged when there is none.
    virtual std::string ApplyValuesFunction(const std::string& value, const ConditionDefinition& condition);

    /// A later registration of the same name replaces the earlier one. `factory` must not be null.
    virtual void RegisterValuesFunction(const std::string& name, ValuesFunctionFactory factory);

    /// Decide from a permission list, which must not be null, as the security manager decides for a logged-in user.
    /// GetResourcesFromList appends to `resources` and always returns true.
    virtual bool CheckPermissionInList(PermissionListInterface* permissionList, const PermissionBase& permission);
    virtual bool GetResourcesFromList(PermissionListInterface* permissionList, const std::string& permissionName,
                                      unsigned permissionValue, std::vector<std::string>& resources);

    std::string repositoryName;
    std::vector<std::unique_ptr<FieldDefinition>> fieldDefinitions; ///< In the order of the configuration.
    std::string filterDelimiter;
    std::string hideAllFilter;
    std::string defaultFilter;
    std::string singleEqualOperator;
    std::string multipleEqualOperator;
    std::string valueMultiplicityDelimiter;
    std::string valueMultiplicityPrefix;
    std::string valueMultiplicitySuffix;
    AccessControlCallback callback;
    SecurityManagerInterface* securityManager = nullptr; ///< Not owned; released only when Initialize fails.
    SMADM_Interface* adminInterface = nullptr;           ///< Not owned; released only when Initialize fails.
    std::map<std::string, ValuesFunctionFactory> valuesFunctionFactories;

private:
    // The two sources of a request's permissions, resources and user details.
    class LoggedInUser;
    class NamedUser;

    template <class User>
    std::string ComposeFilter(User& user);
    /// False: no value is left, or the resources cannot be read. The request then returns the hide-all filter.
    template <class User>
    bool CollectValues(User& user, const FieldDefinition& field, std::vector<std::string>& values);
    template <class User>
    void AppendClause(User& user, const FieldDefinition& field, const std::vector<std::string>& values,
                      std::string& filter);

    // Helpers of HandleSingleConditionForUser.
    std::size_t LengthOfList(const std::vector<std::string>& values) const;
    void AppendList(std::string& text, const ConditionDefinition& condition, const std::vector<std::string>& values);

    // Helpers of ReadConfigurations.
    void ReadField(const CFG_RepositoryServices& fields, const std::string& fieldName);
    bool ReadDefinition(const CFG_RepositoryServices& node, FieldDefinition& field); // false: invalid
    void ReadConditions(const CFG_RepositoryServices& node, std::vector<ConditionDefinition>& conditions);
    void BindValuesFunction(const CFG_RepositoryServices& node, const std::string& number,
                            ConditionDefinition& condition);
};
