#include "tests/faults/CuttingProxy.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace {

constexpr int closed = -1;

sockaddr_in LoopbackAddress(unsigned short port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int Require(int result, const char* step)
{
    return result >= 0 ? result : throw std::system_error(errno, std::generic_category(), step);
}

void Close(int& descriptor)
{
    if (descriptor != closed) {
        close(std::exchange(descriptor, closed));
    }
}

// False at the end of what `from` sends. What the receiver no longer wants is dropped.
bool Pass(int from, int to, std::size_t limit, unsigned long& passed)
{
    std::array<char, 4096> buffer;
    const ssize_t size = recv(from, buffer.data(), std::min(limit, buffer.size()), 0);
    if (size > 0 && to != closed) {
        static_cast<void>(send(to, buffer.data(), static_cast<std::size_t>(size), MSG_NOSIGNAL));
        passed += static_cast<unsigned long>(size);
    }
    return size > 0;
}

} // namespace

CuttingProxy::CuttingProxy(unsigned short serverOfClient, Cut whichCut)
    : serverPort(serverOfClient), cut(whichCut),
      listener(Require(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"))
{
    sockaddr_in address = LoopbackAddress(0);
    socklen_t size = sizeof address;
    auto* general = reinterpret_cast<sockaddr*>(&address);
    Require(bind(listener, general, size), "bind");
    Require(listen(listener, 8), "listen");
    Require(getsockname(listener, general, &size), "getsockname");
    port = ntohs(address.sin_port);
}

CuttingProxy::~CuttingProxy()
{
    for (Connection& connection : connections) {
        Close(connection.client);
        Close(connection.server);
    }
    Close(listener);
}

void CuttingProxy::Serve(int clientLife)
{
    while (true) {
        std::vector<pollfd> watched = {{clientLife, 0, 0}, {listener, POLLIN, 0}};
        for (const Connection& connection : connections) {
            watched.push_back({connection.client, POLLIN, 0}); // poll passes over what is closed
            watched.push_back({connection.server, POLLIN, 0});
        }
        Require(poll(watched.data(), watched.size(), -1), "poll");
        if (watched[0].revents != 0) {
            return;
        }
        for (std::size_t i = 2; i < watched.size(); i += 2) {
            Connection& connection = connections[i / 2 - 1];
            if (watched[i].revents != 0) {
                PassRequest(connection);
            }
            if (watched[i + 1].revents != 0 && connection.server != closed) {
                PassReply(connection);
            }
        }
        if (watched[1].revents != 0) {
            Accept();
        }
    }
}

void CuttingProxy::Accept()
{
    Connection connection = {Require(accept(listener, nullptr, nullptr), "accept"), closed};
    if (!hasCut || !cut.isLasting) {
        const sockaddr_in address = LoopbackAddress(serverPort);
        connection.server = Require(socket(AF_INET, SOCK_STREAM, 0), "socket");
        Require(connect(connection.server, reinterpret_cast<const sockaddr*>(&address), sizeof address), "connect");
    } else {
        EndReplies(connection);
    }
    connections.push_back(connection);
}

void CuttingProxy::PassRequest(Connection& connection)
{
    unsigned long unused = 0;
    if (!Pass(connection.client, connection.server, std::size_t(-1), unused)) {
        Close(connection.client);
        Close(connection.server);
    }
}

void CuttingProxy::PassReply(Connection& connection)
{
    const std::size_t limit = hasCut ? std::size_t(-1) : cut.byte - passed;
    if (limit == 0) {
        hasCut = true;
        EndReplies(connection);
    } else if (!Pass(connection.server, connection.client, limit, passed)) {
        Close(connection.client);
        Close(connection.server);
    }
}

// With FIN, the client's side stays open for what it still sends: closing it with bytes unread would send RST.
void CuttingProxy::EndReplies(Connection& connection)
{
    Close(connection.server);
    if (cut.end == End::reset) {
        const linger atOnce = {1, 0};
        setsockopt(connection.client, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        Close(connection.client);
    } else if (cut.end == End::closed) {
        shutdown(connection.client, SHUT_WR);
    }
}
