#include "SECM_AccessControl/SECM_AccessControlInterface.h"

#include <iostream>
#include <memory>
#include <stdexcept>

int main(int argc, char** argv)
try {
    std::string repository = argc == 4 ? argv[1] : throw std::runtime_error("usage: host REPOSITORY CONNECTION USER");
    const std::unique_ptr<SECM_AccessControlInterface> accessControl(
        SECM_AccessControlInterface::CreateInstance(repository)); // reads the configuration at CFG_REPOSITORY
    if (accessControl->GetAccessControlFilter("", "").empty()) {  // before connecting, this is the hide-all filter
        throw std::runtime_error("no repository '" + repository + "' with a hide_all_filter; see CFG_REPOSITORY");
    }
    const unsigned timeoutSeconds = 5;
    if (!accessControl->InitSecurityConnection(argv[2], timeoutSeconds)) {
        throw std::runtime_error("no connection to the security database; the log says why");
    }
    const std::string filter = accessControl->GetAccessControlFilter(argv[3], "127.0.0.1");
    const std::string query = "SELECT * FROM documents" + (filter.empty() ? "" : " WHERE " + filter) + ";\n";
    std::cout << query; // a fault above leaves no part of a query
} catch (const std::exception& error) {
    std::cerr << "host: " << error.what() << "; nothing is shown\n"; // without a filter, show nothing
    return 1;
}
