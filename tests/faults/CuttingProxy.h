#pragma once

#include <vector>

/// Stands between a client and a server on 127.0.0.1 and ends a connection after so many bytes of the server's replies,
/// counted over all connections. One thread uses it.
class CuttingProxy {
public:
    enum class End { closed, reset, stalled }; // the client gets FIN, RST, nothing any more

    struct Cut {
        unsigned long byte; ///< So many are passed on.
        End end;
        bool isLasting; ///< Connections after the cut end before their first byte; otherwise they are served.
    };

    /// Listens on a free port. Throws std::system_error.
    CuttingProxy(unsigned short serverPort, Cut cut);
    CuttingProxy(const CuttingProxy&) = delete;
    CuttingProxy& operator=(const CuttingProxy&) = delete;
    ~CuttingProxy();

    unsigned short Port() const { return port; }

    /// Serves until the other end of the pipe `clientLife` is closed. Throws std::system_error.
    void Serve(int clientLife);

    /// Reply bytes that were passed on.
    unsigned long PassedBytes() const { return passed; }
    bool HasCut() const { return hasCut; }

private:
    struct Connection {
        int client;
        int server; // -1 after the cut
    };

    void Accept();
    void PassRequest(Connection& connection);
    void PassReply(Connection& connection);
    void EndReplies(Connection& connection);

    const unsigned short serverPort;
    const Cut cut;
    int listener;
    unsigned short port = 0;
    std::vector<Connection> connections;
    unsigned long passed = 0;
    bool hasCut = false;
};
