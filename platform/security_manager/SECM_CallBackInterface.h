// What the security manager may ask the caller that logs a user in. A host overrides the questions that it can answer.
// The defaults answer false, or clear the text.
#pragma once

#include <string>

/// True: the answer is in `out`. False: there is no answer. Called on the thread that called the security manager,
/// during that call.
class SECM_CallBackInterface {
public:
    virtual ~SECM_CallBackInterface() = default;

    virtual bool GetApplicationName(std::string& /*out*/) { return false; }
    virtual bool GetUserName(std::string& /*out*/) { return false; }
    virtual bool GetAuxiliaryText(std::string& /*out*/, bool& /*flag*/) { return false; }
    virtual bool GetGroup(std::string& /*out*/) { return false; }
    virtual bool GetSecondGroup(std::string& /*out*/) { return false; }
    virtual bool GetIpAddress(std::string& /*out*/) { return false; }

    virtual bool GetPassword(std::string& /*out*/) { return false; }
    virtual bool GetNewPassword(std::string& /*out*/) { return false; }
    virtual bool GetCertificate(std::string& /*out*/) { return false; }
    virtual void GetComputerName(std::string& out) { out.clear(); }
    virtual bool GetSecretAnswer(std::string& /*out*/) { return false; }
    virtual bool GetSmartCardPin(std::string& /*out*/) { return false; }
    virtual bool GetSessionTicket(std::string& /*out*/) { return false; }
    virtual void OnLoggedIn() {}
    virtual bool ConfirmSecondSession() { return false; }
    virtual bool ConfirmPasswordChange() { return false; }
    virtual bool GetDelegateName(std::string& out)
    {
        out.clear();
        return false;
    }
    virtual bool ConfirmEmergencyAccess() { return false; }
    virtual bool ConfirmTakeover() { return false; }
    virtual void OnLoggedOut() {}
};
