// The module's one implementation. Every step of filter building is virtual and called through the object, so
// that a tool can derive from the manager, watch the steps and call the originals.
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
    /// Reads the configuration; throws as CreateInstance does. A derived class's overrides do not take part
    /// in that.
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
    /// Settings and field definitions, afresh. What is missing or not whole is logged and left out; a repository that
    /// cannot be read throws.
    virtual void ReadConfigurations();
    /// Destroys the definitions and empties the list; settings stay.
    virtual void ClearFieldDefinitions();
    /// Appends every run of characters between commas, blanks included; empty ones are passed over.
    virtual void SplitCommaList(const std::string& text, std::vector<std::string>& entries);

    /// The condition's text for these values; empty when a mandatory attribute is missing, or nothing can be
    /// told of the user: the condition then adds nothing.
    virtual std::string HandleSingleConditionForUser(const ConditionDefinition& condition,
                                                     const std::vector<std::string>& values,
                                                     UserDetailsInterface* userDetails);
    virtual std::string HandleSingleCondition(const ConditionDefinition& condition,
                                              const std::vector<std::string>& values,
                                              SecurityManagerInterface* secmInterface);
    /// Puts the user's own attribute in place of the value "%my%"; empty when the user has none.
    virtual void ReplaceSingleValueForUser(std::string& value, const FieldDefinition& field,
                                           UserDetailsInterface* userDetails);
    virtual void ReplaceSingleValue(std::string& value, const FieldDefinition& field,
                                    SecurityManagerInterface* secmInterface);
    /// Puts the attribute in place of the token that names it, which must not be empty.
    virtual void ResolveUserField(std::string& token, UserDetailsInterface* userDetails);
    virtual std::string ApplyValuesFunction(const std::string& value, const ConditionDefinition& condition);

    /// The last registration of a name wins. `factory` must not be null.
    virtual void RegisterValuesFunction(const std::string& name, ValuesFunctionFactory factory);

    /// Answer from a permission list, never null, what the security manager answers of a user who is logged in;
    /// resources are appended, and the answer is always true.
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
    SecurityManagerInterface* securityManager = nullptr; ///< Not owned: released only when it refuses to connect.
    SMADM_Interface* adminInterface = nullptr;           ///< Not owned: likewise.
    std::map<std::string, ValuesFunctionFactory> valuesFunctionFactories;

private:
    // Where the permissions, resources and details of one request come from.
    class LoggedInUser;
    class NamedUser;

    template <class User>
    std::string ComposeFilter(User& user);
    /// False: the field leaves no value, or it cannot be told which; the answer is then the hide-all filter.
    template <class User>
    bool CollectValues(User& user, const FieldDefinition& field, std::vector<std::string>& values);
    template <class User>
    void AppendClause(User& user, const FieldDefinition& field, const std::vector<std::string>& values,
                      std::string& filter);

    // The pieces of HandleSingleConditionForUser.
    std::size_t LengthOfList(const std::vector<std::string>& values) const;
    void AppendList(std::string& text, const ConditionDefinition& condition, const std::vector<std::string>& values);

    // The pieces of ReadConfigurations.
    void ReadField(const CFG_RepositoryServices& fields, const std::string& fieldName);
    bool ReadDefinition(const CFG_RepositoryServices& node, FieldDefinition& field); // false: not whole
    void ReadConditions(const CFG_RepositoryServices& node, std::vector<ConditionDefinition>& conditions);
    void BindValuesFunction(const CFG_RepositoryServices& node, const std::string& number,
                            ConditionDefinition& condition);
};
