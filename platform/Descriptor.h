// Ownership of an open file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace secm::platform {

/// Closes its descriptor when it is destroyed.
class Descriptor {
public:
    Descriptor() = default;
    /// Takes ownership of `openDescriptor`; -1 means none.
    explicit Descriptor(int openDescriptor) : descriptor(openDescriptor) {}
    ~Descriptor()
    {
        if (IsOpen()) {
            close(descriptor);
        }
    }
    Descriptor(Descriptor&& other) noexcept : descriptor(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(descriptor, other.descriptor);
        return *this;
    }

    int Get() const { return descriptor; }
    bool IsOpen() const { return descriptor != -1; }

    /// Gives up ownership: the caller closes the descriptor.
    int Release() { return std::exchange(descriptor, -1); }

private:
    int descriptor = -1;
};

} // namespace secm::platform
