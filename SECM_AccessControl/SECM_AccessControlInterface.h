// The module's public interface: the only header of the module that a host includes.
#pragma once

#include <string>

class SecurityManagerInterface;

/// Composes the access-control filter of one user at a time, in the host's own query language.
///
/// One object belongs to one thread at a time: a request writes its user into the object. Objects share
/// nothing, so give each thread its own. The module catches no exception: what a platform library or an
/// allocation throws reaches the host. The host then has no filter and must show nothing.
class SECM_AccessControlInterface {
public:
    /// Creates an object and reads the configuration of `repositoryName` into it; the object never reads it again.
    /// A repository that the configuration lacks gives an object too: its settings are empty and every filter is
    /// empty. The caller owns the result and deletes it before unloading the library. Throws what the
    /// configuration layer throws when the configuration cannot be read, and std::bad_alloc.
    __attribute__((visibility("default"))) static SECM_AccessControlInterface*
    CreateInstance(std::string& repositoryName);

    /// Frees the memory of this object. Does not close the connections: the security manager owns them.
    virtual ~SECM_AccessControlInterface();

    /// Connects to the security manager, then to its administration interface. Both get the two arguments
    /// unchanged; for the supplied ones these are a connection text and a time limit in seconds (0: only the
    /// limits of the database). False: one of them refused, and the log says which. Without a security manager,
    /// requests with an address return the hide-all filter; without an administration interface, requests by user
    /// name alone do. Opens the administration library at the first call, and throws when that fails.
    virtual bool InitSecurityConnection(const char* connectionText, unsigned connectionValue) = 0;

    /// Composes a user's filter without a log-in, from the answers of the administration interface. Returns the
    /// composed filter (empty: no restriction); the default filter when there is no such user; the hide-all
    /// filter when a field leaves the user no value, when there is no permission list, or when there is no
    /// administration interface. `userName` ends at its first NUL.
    virtual std::string GetAccessControlFilter(const std::string& userName) = 0;

    /// Logs the user in from `ipAddress` (any text), composes the filter, and logs the user out. Returns the
    /// composed filter (empty: no restriction); the default filter when the user is not logged in; the hide-all
    /// filter when a field leaves the user no value, when the resources cannot be read, or when there is no
    /// connection to the security manager.
    virtual std::string GetAccessControlFilter(const std::string& userName, const std::string& ipAddress) = 0;

    /// Composes the filter of the user whom the host logged in on `secmInterface`. The host keeps owning
    /// `secmInterface`. Returns the hide-all filter when it is null, when a field leaves the user no value, or when
    /// the resources cannot be read.
    virtual std::string GetAccessControlFilter(SecurityManagerInterface* secmInterface) = 0;

    /// The setting `value_multiplicity_delimiter`: the text between two values of a list.
    virtual std::string GetValueMultiplicityDelimiter() = 0;
};
