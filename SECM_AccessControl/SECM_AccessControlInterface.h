// What a host includes, and nothing else of the module.
#pragma once

#include <string>

class SecurityManagerInterface;

/// Composes the access-control filter of one user at a time, in the host's own query language.
///
/// One object belongs to one thread at a time: a request writes its user into the object. Objects share
/// nothing, so give each thread its own. The module catches no exception: what a platform library or an
/// allocation throws reaches the host, and then there is no filter; show nothing.
class SECM_AccessControlInterface {
public:
    /// Reads the configuration of `repositoryName`, once and for the object's life.
    /// A repository without configuration still gives an object: its settings are empty, and so is every
    /// filter. The caller owns the result and deletes it before unloading the library. Throws what the
    /// configuration repository throws when it cannot be read, and std::bad_alloc.
    __attribute__((visibility("default"))) static SECM_AccessControlInterface*
    CreateInstance(std::string& repositoryName);

    /// Releases the object's own memory. Security-manager connections stay with the security manager.
    virtual ~SECM_AccessControlInterface();

    /// Connects to the security manager and to its administration interface; both are given the two arguments
    /// as they are (with the supplied ones: a connection text, and a time limit in seconds, 0 for none of our
    /// own). False: one of them refused, and the log says which. After the first refused, requests answer the
    /// hide-all filter; after the second, requests that log in are served all the same. Throws when the
    /// administration library, opened here for the first time, cannot be opened.
    virtual bool InitSecurityConnection(const char* connectionText, unsigned connectionValue) = 0;

    /// The filter of a user known to the administration interface, without a log-in: the composed filter
    /// (empty: no restriction); the default filter when there is no such user; the hide-all filter when a
    /// restriction cannot be written or there is no administration interface. `userName` counts up to its
    /// first NUL.
    virtual std::string GetAccessControlFilter(const std::string& userName) = 0;

    /// The filter of a user who is logged in for this request, from `ipAddress` (any text), and out again:
    /// the composed filter (empty: no restriction); the default filter when the user cannot be logged in; the
    /// hide-all filter when a restriction cannot be written or the connection was never made.
    virtual std::string GetAccessControlFilter(const std::string& userName, const std::string& ipAddress) = 0;

    /// The filter of the user whom the host itself logged in on `secmInterface`, which stays the host's. The
    /// hide-all filter when it is null or a restriction cannot be written.
    virtual std::string GetAccessControlFilter(SecurityManagerInterface* secmInterface) = 0;

    /// What the configuration puts between the values of a list.
    virtual std::string GetValueMultiplicityDelimiter() = 0;
};
