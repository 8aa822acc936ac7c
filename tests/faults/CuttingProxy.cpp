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

using secm::platform::Descriptor;

constexpr std::size_t noLimit = ~std::size_t{0};

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

// Passes on what there is, at most `limit` bytes. Returns how many; 0: `from` sends no more. What a closed receiver
// would get is dropped.
std::size_t Pass(const Descriptor& from, const Descriptor& to, std::size_t limit)
{
    std::array<char, 4096> buffer;
    const ssize_t size = std::max<ssize_t>(recv(from.Get(), buffer.data(), std::min(limit, buffer.size()), 0), 0);
    if (to.IsOpen()) {
        static_cast<void>(send(to.Get(), buffer.data(), static_cast<std::size_t>(size), MSG_NOSIGNAL));
    }
    return static_cast<std::size_t>(size);
}

} // namespace

CuttingProxy::CuttingProxy(unsigned short serverOfClient, Cut whichCut)
    : serverPort(serverOfClient), cut(whichCut),
      listener(Require(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"))
{
    sockaddr_in address = LoopbackAddress(0);
    socklen_t size = sizeof address;
    auto* general = reinterpret_cast<sockaddr*>(&address);
    Require(bind(listener.Get(), general, size), "bind");
    Require(listen(listener.Get(), 8), "listen");
    Require(getsockname(listener.Get(), general, &size), "getsockname");
    port = ntohs(address.sin_port);
}

void CuttingProxy::Serve(int clientLife)
{
    while (true) {
        std::vector<pollfd> watched = {{clientLife, 0, 0}, {listener.Get(), POLLIN, 0}};
        for (const Connection& connection : connections) {
            watched.push_back({connection.client.Get(), POLLIN, 0}); // poll() skips -1
            watched.push_back({connection.server.Get(), POLLIN, 0});
        }
        Require(poll(watched.data(), watched.size(), -1), "poll");
        if (watched[0].revents != 0) {
            return;
        }
        for (std::size_t i = 2; i < watched.size(); i += 2) {
            Connection& connection = connections[i / 2 - 1];
            if (watched[i].revents != 0 && Pass(connection.client, connection.server, noLimit) == 0) {
                connection = {};
            }
            if (watched[i + 1].revents != 0 && connection.server.IsOpen()) {
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
    Connection connection = {Descriptor(Require(accept(listener.Get(), nullptr, nullptr), "accept")), Descriptor()};
    if (!hasCut || !cut.isLasting) {
        const sockaddr_in address = LoopbackAddress(serverPort);
        connection.server = Descriptor(Require(socket(AF_INET, SOCK_STREAM, 0), "socket"));
        Require(connect(connection.server.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                "connect");
    } else {
        EndReplies(connection);
    }
    connections.push_back(std::move(connection));
}

void CuttingProxy::PassReply(Connection& connection)
{
    const std::size_t limit = hasCut ? noLimit : cut.byte - passed;
    if (limit == 0) {
        hasCut = true;
        EndReplies(connection);
    } else if (const std::size_t size = Pass(connection.server, connection.client, limit)) {
        passed += size;
    } else {
        connection = {};
    }
}

// After FIN, the client's side stays open for what it still sends: closing it with unread bytes would send RST.
void CuttingProxy::EndReplies(Connection& connection)
{
    connection.server = Descriptor();
    if (cut.end == End::reset) {
        const linger atOnce = {1, 0};
        setsockopt(connection.client.Get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        connection.client = Descriptor();
    } else if (cut.end == End::closed) {
        shutdown(connection.client.Get(), SHUT_WR);
    }
}
