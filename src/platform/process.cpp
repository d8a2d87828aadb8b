#include "platform/process.h"

#include <cerrno>
#include <csignal>

#ifdef _WIN32
#    include <process.h>
#else
#    include <spawn.h>
#    include <sys/wait.h>
#    include <unistd.h>
#endif

namespace norvane {

int runProcess(const std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
#ifdef _WIN32
    errno = 0;
    const auto status = ::_spawnvp(_P_WAIT, pointers[0], pointers.data());
    return status == -1 && errno == ENOENT ? processNotFound : static_cast<int>(status);
#else
    pid_t process = 0;
    if (::posix_spawnp(&process, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0) return processNotFound;
    int status = 0;
    while (::waitpid(process, &status, 0) < 0)
        if (errno != EINTR) return -2;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -2;
#endif
}

void survivesFileSizeLimit() {
#ifndef _WIN32
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

int processNumber() {
#ifdef _WIN32
    return ::_getpid();
#else
    return static_cast<int>(::getpid());
#endif
}

} // namespace norvane
