// Fills a condition template for one field's values and one user. The order of the replacements is part of
// the template language: each replacement also searches the text that earlier ones inserted.
#include "SECM_AccessControl/SECM_AccessControlManager.h"

#include "SECM_AccessControl/Log.h"
#include "SECM_AccessControl/TemplateLanguage.h"
#include "platform/security_manager/SecurityManagerInterface.h"
#include "platform/security_manager/UserDetailsInterface.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr secm::LogOrigin conditionLog{secm::managerSourceFile, "SECM_AccessControlManager::HandleSingleCondition"};
constexpr secm::LogOrigin valueLog{secm::managerSourceFile, "SECM_AccessControlManager::ReplaceSingleValue"};

// The position of the first values placeholder; npos: none. Searches for the placeholder's character that is rarest
// in templates, because that is faster than searching for the whole placeholder.
std::size_t FindValues(std::string_view text)
{
    constexpr char rarest = 'v';
    constexpr std::size_t offset = secm::valuesPlaceholder.find(rarest);
    for (std::size_t at = offset; (at = text.find(rarest, at)) != std::string_view::npos; ++at) {
        if (text.substr(at - offset).starts_with(secm::valuesPlaceholder)) {
            return at - offset;
        }
    }
    return std::string_view::npos;
}

// Replaces the tokens with the user's attributes. False: the user lacks a mandatory attribute.
bool FillUserTokens(std::string& text, const ConditionDefinition& condition, UserDetailsInterface* userDetails)
{
    for (const std::string& token : condition.replaceFields) {
        if (!secm::IsFramed(token)) {
            continue;
        }
        const char* attribute = userDetails->GetAttribute(secm::AttributeName(token).c_str());
        if (attribute == nullptr && condition.mandatoryFields.count(token) != 0) {
            return false;
        }
        secm::ReplaceFirst(text, token, attribute != nullptr ? attribute : "");
    }
    return true;
}

// Fills the template: `appendValues` writes the text that replaces the values placeholder, if there is one;
// `equalOperator` replaces the operator's placeholder.
template <class AppendValues>
std::string FilledWithValues(const std::string& conditionText, const std::string& equalOperator,
                             std::size_t valuesLength, AppendValues appendValues)
{
    const std::size_t position = std::min(FindValues(conditionText), conditionText.size());
    std::string text;
    text.reserve(conditionText.size() + valuesLength + equalOperator.size());
    text.assign(conditionText, 0, position);
    // An operator before the values is the first one in any case. Filled now, it does not move the values later.
    const bool isOperatorFilled = secm::ReplaceFirst(text, secm::equalOperatorPlaceholder, equalOperator);

    const std::size_t beforeValues = text.size();
    appendValues(text);
    if (position == conditionText.size()) {
        text.resize(beforeValues); // without a placeholder, values are mapped and dropped
    } else {
        text.append(conditionText, position + secm::valuesPlaceholder.size());
    }
    if (!isOperatorFilled) {
        secm::ReplaceFirst(text, secm::equalOperatorPlaceholder, equalOperator);
    }
    return text;
}

} // namespace

std::string SECM_AccessControlManager::HandleSingleConditionForUser(const ConditionDefinition& condition,
                                                                    const std::vector<std::string>& values,
                                                                    UserDetailsInterface* userDetails)
{
    if (values.size() != 1) {
        return FilledWithValues(condition.conditionText, multipleEqualOperator, LengthOfList(values),
                                [&](std::string& text) { AppendList(text, condition, values); });
    }
    const std::string mapped = ApplyValuesFunction(values.front(), condition);
    if (mapped != secm::ownValue) {
        return FilledWithValues(condition.conditionText, singleEqualOperator, mapped.size(),
                                [&](std::string& text) { text += mapped; });
    }
    std::string text = condition.conditionText;
    if (!FillUserTokens(text, condition, userDetails)) {
        return "";
    }
    secm::ReplaceFirst(text, secm::equalOperatorPlaceholder, singleEqualOperator);
    return text;
}

// The length when no value is mapped; it only reserves memory.
std::size_t SECM_AccessControlManager::LengthOfList(const std::vector<std::string>& values) const
{
    std::size_t length = valueMultiplicityPrefix.size() + valueMultiplicitySuffix.size();
    for (const std::string& value : values) {
        length += value.size() + valueMultiplicityDelimiter.size();
    }
    return length;
}

void SECM_AccessControlManager::AppendList(std::string& text, const ConditionDefinition& condition,
                                           const std::vector<std::string>& values)
{
    text += valueMultiplicityPrefix;
    std::string_view delimiter;
    for (const std::string& value : values) {
        text += delimiter;
        text += ApplyValuesFunction(value, condition);
        delimiter = valueMultiplicityDelimiter;
    }
    text += valueMultiplicitySuffix;
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
    if (value == secm::ownValue && !field.myField.empty()) {
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
    const char* attribute = userDetails->GetAttribute(secm::AttributeName(token).c_str());
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
