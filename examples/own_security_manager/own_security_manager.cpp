// A host's own security manager. Its users stand in memory; testing/InMemorySecurity.cpp answers for them. Built into
// libraries with the names of the supplied ones, it takes their place without a change to the module. docs/embedding.md
// says what every security manager must do.
#include "platform/security_manager/SECM_Constants.h"
#include "testing/InMemorySecurity.h"

#include <list>
#include <mutex>

namespace {

using namespace secm::testing;

// All interfaces share the users. Nobody changes them, so no lock is needed.
Users& KnownUsers()
{
    static Users users = {{"ada", User("", {{"employee_id", "e1"}},
                                       {{"archive.site", 1, nullptr, false}, // without a resource: no restriction
                                        {"archive.kind", 1, nullptr, false},
                                        {"archive.confidentiality", 1, nullptr, false},
                                        {"archive.region", 1, nullptr, false},
                                        {"archive.department", 1, "Legal", false},
                                        {"archive.author", 1, "%my%", false}})}};
    return users;
}

// Owns the interfaces that were handed out: hosts may release them at any time, from any thread, or never.
template <class Interface>
class HandedOut {
public:
    Interface* Add()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return &interfaces.emplace_back(KnownUsers());
    }
    void Remove(const void* released)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        interfaces.remove_if([released](const Interface& each) { return &each == released; });
    }

private:
    std::mutex mutex;
    std::list<Interface> interfaces;
};

#ifdef ADMINISTRATION_LIBRARY
HandedOut<InMemoryAdministration> handedOut;
#else
HandedOut<InMemorySecurityManager> handedOut;
#endif

} // namespace

#ifdef ADMINISTRATION_LIBRARY
SMADM_Interface* getSECM_Interface(const char* /*applicationName*/, unsigned interfaceVersion)
{
    return interfaceVersion == secm::platform::administrationVersion ? handedOut.Add() : nullptr;
}

void releaseSECM_Interface(SMADM_Interface* administration)
{
    handedOut.Remove(administration);
}
#else
SecurityManagerInterface* getSecurityManagerInterface(const char* /*applicationName*/, unsigned interfaceVersion)
{
    return interfaceVersion == secm::platform::securityManagerVersion ? handedOut.Add() : nullptr;
}

void releaseSecurityManagerInterface(SecurityManagerInterface* securityManager)
{
    handedOut.Remove(securityManager);
}
#endif
