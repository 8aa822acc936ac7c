// A host that loads the module with dlopen: it loads, uses and unloads the module TIMES times.
// Usage: loader LIBRARY TIMES REPOSITORY CONNECTION USER
#include "SECM_AccessControl/SECM_AccessControlInterface.h"

#include <dlfcn.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

// The mangled name of SECM_AccessControlInterface::CreateInstance.
constexpr const char* factoryName =
    "_ZN27SECM_AccessControlInterface14CreateInstanceERNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE";

bool IsMapped(const std::string& library)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find(library) != std::string::npos) {
            return true;
        }
    }
    return false;
}

void Use(const char* library, const std::string& repositoryName, const char* connection, const char* user)
{
    const std::unique_ptr<void, int (*)(void*)> handle(dlopen(library, RTLD_NOW | RTLD_LOCAL), dlclose);
    using Factory = SECM_AccessControlInterface* (*)(std::string&);
    const auto create = handle ? reinterpret_cast<Factory>(dlsym(handle.get(), factoryName)) : nullptr;
    if (create == nullptr) {
        throw std::runtime_error(dlerror());
    }
    std::string repository = repositoryName;
    // Declared after the handle, so it is destroyed before the library is unloaded.
    const std::unique_ptr<SECM_AccessControlInterface> accessControl(create(repository));
    std::cout << "administration library before connecting: " << IsMapped("libsecm_admin") << ", ";
    try {
        const bool isConnected = accessControl->InitSecurityConnection(connection, 5);
        std::cout << "connected: " << isConnected;
    } catch (const std::exception& error) {
        std::cout << "exception: " << error.what();
    }
    std::cout << ", after: " << IsMapped("libsecm_admin")
              << ", filter: " << accessControl->GetAccessControlFilter(user, "") << "\n";
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc != 6) {
        throw std::runtime_error("usage: loader LIBRARY TIMES REPOSITORY CONNECTION USER");
    }
    for (int times = std::stoi(argv[2]); times > 0; --times) {
        Use(argv[1], argv[3], argv[4], argv[5]);
    }
    // The engines of the configuration and the log stay loaded: some of their C++ libraries cannot be unloaded.
    std::cout << "module or security manager left behind: "
              << (IsMapped("libSECM_AccessControl") || IsMapped("libsecm")) << "\n";
} catch (const std::exception& error) {
    std::cerr << "loader: " << error.what() << "\n";
    return 1;
}
