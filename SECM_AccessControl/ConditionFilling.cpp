// Fills a condition template for one field's values and one user. The order of the replacements is part of
// the template language: each searches what earlier ones put in as well.
#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include "SECM_AccessControl/Log.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <string_view>

namespace {

constexpr std::string_view valuesPlaceholder = "%values%";
constexpr std::string_view equalOperatorPlaceholder = "%equal_operator%";
constexpr std::string_view ownValue = "%my%";
constexpr char tokenFrame = '$';

constexpr LogOrigin conditionLog{managerSourceFile, "SECM_AccessControlManager::HandleSingleCondition"};
constexpr LogOrigin valueLog{managerSourceFile, "SECM_AccessControlManager::ReplaceSingleValue"};

bool ReplaceFirst(std::string& text, std::string_view pattern, std::string_view replacement)
{
    const std::size_t position = text.find(pattern);
    if (position == std::string::npos) {
        return false;
    }
    text.replace(position, pattern.size(), replacement);
    return true;
}

// A token without its first and last character: the name of an attribute. Of a single character nothing is
// left.
std::string AttributeName(std::string_view token)
{
    return std::string(token.size() > 1 ? token.substr(1, token.size() - 2) : "");
}

bool IsFramed(std::string_view token)
{
    return !token.empty() && token.front() == tokenFrame && token.back() == tokenFrame;
}

// False: the user lacks an attribute without which the condition must not stand.
bool FillUserTokens(std::string& text, const ConditionDefinition& condition, UserDetailsInterface* userDetails)
{
    for (const std::string& token : condition.replaceFields) {
        if (!IsFramed(token)) {
            continue;
        }
        const char* attribute = userDetails->GetAttribute(AttributeName(token).c_str());
        if (attribute == nullptr && condition.mandatoryFields.count(token) != 0) {
            return false;
        }
        ReplaceFirst(text, token, attribute != nullptr ? attribute : "");
    }
    return true;
}

} // namespace

std::string SECM_AccessControlManager::HandleSingleConditionForUser(const ConditionDefinition& condition,
                                                                    const std::vector<std::string>& values,
                                                                    UserDetailsInterface* userDetails)
{
    std::string text = condition.conditionText;
    const bool isSingle = values.size() == 1;
    if (isSingle) {
        const std::string mapped = ApplyValuesFunction(values.front(), condition);
        if (mapped != ownValue) {
            ReplaceFirst(text, valuesPlaceholder, mapped);
        } else if (!FillUserTokens(text, condition, userDetails)) {
            return "";
        }
    } else {
        std::string list = valueMultiplicityPrefix;
        std::string_view separator;
        for (const std::string& value : values) {
            list.append(separator).append(ApplyValuesFunction(value, condition));
            separator = valueMultiplicityDelimiter;
        }
        list += valueMultiplicitySuffix;
        ReplaceFirst(text, valuesPlaceholder, list);
    }
    ReplaceFirst(text, equalOperatorPlaceholder, isSingle ? singleEqualOperator : multipleEqualOperator);
    return text;
}

std::string SECM_AccessControlManager::HandleSingleCondition(const ConditionDefinition& condition,
                                                             const std::vector<std::string>& values,
                                                             SecurityManagerInterface* secmInterface)
{
    if (secmInterface == nullptr) {
        SECM_LOG(conditionLog, failureLevel, "secmInterface is null - returning empty string");
        return "";
    }
    UserDetailsInterface* userDetails = secmInterface->GetUserDetails();
    if (userDetails == nullptr) {
        SECM_LOG(conditionLog, failureLevel, "userDetails are null - returning empty string");
        return "";
    }
    return HandleSingleConditionForUser(condition, values, userDetails);
}

void SECM_AccessControlManager::ReplaceSingleValueForUser(std::string& value, const FieldDefinition& field,
                                                          UserDetailsInterface* userDetails)
{
    if (value == ownValue && !field.myField.empty()) {
        value = field.myField;
        ResolveUserField(value, userDetails);
    }
}

void SECM_AccessControlManager::ReplaceSingleValue(std::string& value, const FieldDefinition& field,
                                                   SecurityManagerInterface* secmInterface)
{
    if (secmInterface == nullptr) {
        SECM_LOG(valueLog, failureLevel, "secmInterface is null");
        return;
    }
    UserDetailsInterface* userDetails = secmInterface->GetUserDetails();
    if (userDetails == nullptr) {
        SECM_LOG(valueLog, failureLevel, "userDetails are null");
        return;
    }
    ReplaceSingleValueForUser(value, field, userDetails);
}

void SECM_AccessControlManager::ResolveUserField(std::string& token, UserDetailsInterface* userDetails)
{
    const char* attribute = userDetails->GetAttribute(AttributeName(token).c_str());
    token = attribute != nullptr ? attribute : "";
}

std::string SECM_AccessControlManager::ApplyValuesFunction(const std::string& value,
                                                           const ConditionDefinition& condition)
{
    std::string mapped = value;
    if (condition.valuesFunction) {
        condition.valuesFunction->MapValue(value, mapped);
    }
    return mapped;
}
