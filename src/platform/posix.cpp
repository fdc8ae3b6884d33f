// The platform layer on Linux and other POSIX systems.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/platform.h"

extern char **environ;

bool qqpexists(const char *name) noexcept { return access(name, F_OK) == 0; }

bool qqpisdir(const char *name) noexcept {
    struct stat st;
    return stat(name, &st) == 0 && S_ISDIR(st.st_mode);
}

// A relative name can only come from a program started by a relative path,
// and the working directory may have changed since: the kernel's link to
// the program is used then.
bool qqpcodefile(const void *addr, char *path, size_t size) noexcept {
    Dl_info info;
    if (dladdr(const_cast<void *>(addr), &info) && info.dli_fname && info.dli_fname[0] == '/') {
        if (std::strlen(info.dli_fname) >= size) return false;
        std::strcpy(path, info.dli_fname);
        return true;
    }
    ssize_t n = readlink("/proc/self/exe", path, size - 1);
    if (n <= 0) return false;
    path[n] = '\0';
    return true;
}

unsigned qqpthread() noexcept { return (unsigned)syscall(SYS_gettid); }

bool qqpdisplay() noexcept {
    const char *d = std::getenv("DISPLAY");
    return d && *d;
}

int qqprun(const char *const *argv) noexcept {
    posix_spawn_file_actions_t acts;
    if (posix_spawn_file_actions_init(&acts) != 0) return -1;
    posix_spawn_file_actions_addopen(&acts, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&acts, 1, 2);
    pid_t pid;
    int rc = posix_spawnp(&pid, argv[0], &acts, nullptr, const_cast<char *const *>(argv), environ);
    posix_spawn_file_actions_destroy(&acts);
    if (rc != 0) return -1;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0)
        if (errno != EINTR) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
