// Linked into the module in place of the administration library. Opens that library at the first call of its
// operations, so that a host that never connects never needs it.
#include "platform/security_manager/SMADM_Interface.h"

#include "platform/KeptUntilUnload.h"

#include <dlfcn.h>
#include <link.h>

#include <climits>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace secm::platform {
namespace {

class AdminLibrary {
public:
    static AdminLibrary& Opened()
    {
        // When opening throws, `library` stays uninitialised, and the next call tries again.
        static AdminLibrary& library = KeptUntilUnload<AdminLibrary>();
        return library;
    }

    AdminLibrary() : path(Path()), handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
    {
        if (handle == nullptr) {
            // The loader's reason may name only a library that this one needs.
            throw std::runtime_error("the administration library '" + path + "' cannot be opened: " + Reason());
        }
        try {
            get = Entry<decltype(get)>("getSECM_Interface");
            release = Entry<decltype(release)>("releaseSECM_Interface");
        } catch (...) {
            dlclose(handle);
            throw;
        }
    }

    ~AdminLibrary() { dlclose(handle); }
    AdminLibrary(const AdminLibrary&) = delete;
    AdminLibrary& operator=(const AdminLibrary&) = delete;

    decltype(&::getSECM_Interface) get = nullptr;
    decltype(&::releaseSECM_Interface) release = nullptr;

private:
    // A file beside this library is preferred, because it belongs to the same installation. When that file is damaged,
    // opening it fails; no other place is searched.
    static std::string Path()
    {
        std::string name = SECM_ADMIN_LIBRARY;
        Dl_info self{};
        void* map = nullptr;
        std::string folder(PATH_MAX, '\0');
        // A program that contains the module's code has no name here; the loader's search path is used then.
        if (dladdr1(reinterpret_cast<const void*>(&Path), &self, &map, RTLD_DL_LINKMAP) != 0 &&
            *static_cast<link_map*>(map)->l_name != '\0' && dlinfo(map, RTLD_DI_ORIGIN, folder.data()) == 0) {
            std::string beside = std::string(folder.c_str()) + "/" + name;
            if (std::error_code error; std::filesystem::exists(beside, error) || error) {
                return beside;
            }
        }
        return name;
    }

    static std::string Reason()
    {
        const char* reason = dlerror();
        return reason != nullptr ? reason : "no reason given";
    }

    template <class Function>
    Function Entry(const char* name)
    {
        void* entry = dlsym(handle, name);
        if (entry == nullptr) {
            throw std::runtime_error("the administration library '" + path + "' has no entry point: " + Reason());
        }
        return reinterpret_cast<Function>(entry);
    }

    std::string path;
    void* handle;
};

} // namespace
} // namespace secm::platform

using secm::platform::AdminLibrary;

extern "C" SMADM_Interface* getSECM_Interface(const char* applicationName, unsigned interfaceVersion)
{
    return AdminLibrary::Opened().get(applicationName, interfaceVersion);
}

extern "C" void releaseSECM_Interface(SMADM_Interface* administration)
{
    if (administration != nullptr) {
        AdminLibrary::Opened().release(administration);
    }
}
