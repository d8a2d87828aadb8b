#include "platform/claim.h"

#include <utility>

#ifdef __linux__
#    include <sys/socket.h>
#    include <sys/stat.h>
#    include <sys/un.h>
#    include <unistd.h>

#    include <cerrno>
#    include <cstdint>
#    include <cstdio>
#endif

namespace norvane {

namespace {

#ifdef __linux__

/// A socket in the system's own name space, which has no file: the folder by its numbers, the name by a checksum.
sockaddr_un addressOf(const std::string& folder, const std::string& name, int place) {
    struct stat status {};

    ::stat(folder.c_str(), &status);
    std::uint64_t sum = 1469598103934665603u;
    for (const char c : name) sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211u;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // The zero in the first place is what keeps it out of the file system.
    std::snprintf(address.sun_path + 1, sizeof address.sun_path - 1, "norvane %llx %llx %llx %d",
                  static_cast<unsigned long long>(status.st_dev), static_cast<unsigned long long>(status.st_ino),
                  static_cast<unsigned long long>(sum), place);
    return address;
}

int openSocket() { return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0); }

/// Gives a handle, or -1 where another process has the address, or where there are no sockets.
int claim(const sockaddr_un& address) {
    const int handle = openSocket();
    if (handle < 0) return -1;
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    if (::bind(handle, generic, sizeof address) == 0 && ::listen(handle, SOMAXCONN) == 0) return handle;
    ::close(handle);
    return -1;
}

/// The process that has an address: 0 where there is none, -1 where it is not known.
int holderOf(const sockaddr_un& address) {
    const int handle = openSocket();
    if (handle < 0) return 0;
    int holder = 0;
    if (::connect(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        ucred process{};
        socklen_t length = sizeof process;
        const bool known = ::getsockopt(handle, SOL_SOCKET, SO_PEERCRED, &process, &length) == 0 && process.pid > 0;
        holder = known ? process.pid : -1; // 0 from another space of process numbers
    } else if (errno == EAGAIN) {
        holder = -1; // it is there, but too many have asked already
    }
    ::close(handle);
    return holder;
}

#endif

} // namespace

Claim::~Claim() {
#ifdef __linux__
    if (handle_ >= 0) ::close(handle_);
#endif
}

Claim::Claim(Claim&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}

Claim& Claim::operator=(Claim&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
}

#ifdef __linux__

Claim Claim::alone(const std::string& folder, const std::string& name, int& holder) {
    const sockaddr_un address = addressOf(folder, name, 0);
    const int handle = claim(address);
    holder = handle < 0 ? holderOf(address) : 0;
    return Claim(handle);
}

Claim Claim::shared(const std::string& folder, const std::string& name, int& other) {
    constexpr int places = 16; // more than that many share a folder unseen
    other = 0;
    int handle = -1;
    for (int place = 0; place < places; ++place) {
        const sockaddr_un address = addressOf(folder, name, place);
        const int holder = holderOf(address);
        if (holder != 0)
            other = holder;
        else if (handle < 0)
            handle = claim(address);
    }
    return Claim(handle);
}

#else

Claim Claim::alone(const std::string&, const std::string&, int& holder) {
    holder = 0;
    return {};
}

Claim Claim::shared(const std::string&, const std::string&, int& other) {
    other = 0;
    return {};
}

#endif

} // namespace norvane
