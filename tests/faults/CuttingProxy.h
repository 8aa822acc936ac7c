#pragma once

#include "platform/Descriptor.h"

#include <vector>

/// Stands between a client and a server on 127.0.0.1 and ends a connection after a number of reply bytes, counted over
/// all connections. One thread uses it.
class CuttingProxy {
public:
    enum class End { closed, reset, stalled }; // the client gets FIN, RST, or nothing more

    struct Cut {
        unsigned long byte; ///< This many reply bytes are passed on.
        End end;
        bool isLasting; ///< Later connections end before their first byte; otherwise they are served.
    };

    /// Listens on a free port. Throws std::system_error.
    CuttingProxy(unsigned short serverPort, Cut cut);

    unsigned short Port() const { return port; }

    /// Serves until the other end of the pipe `clientLife` is closed. Throws std::system_error.
    void Serve(int clientLife);

    /// Reply bytes that were passed on.
    unsigned long PassedBytes() const { return passed; }
    bool HasCut() const { return hasCut; }

private:
    struct Connection {
        secm::platform::Descriptor client;
        secm::platform::Descriptor server; // none after the cut
    };

    void Accept();
    void PassReply(Connection& connection);
    void EndReplies(Connection& connection);

    const unsigned short serverPort;
    const Cut cut;
    secm::platform::Descriptor listener;
    unsigned short port = 0;
    std::vector<Connection> connections;
    unsigned long passed = 0;
    bool hasCut = false;
};
