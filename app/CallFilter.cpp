#include "app/CallFilter.h"

#ifdef QUILLON_SECCOMP
#include <algorithm>
#include <cerrno>
#include <iterator>
#include <memory>

#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>

namespace {

constexpr const char *allowed[] = {
    // what is open
    "read", "pread64", "write", "lseek", "_llseek", "close", "fstat", "fstat64", "newfstatat",
    "fstatat64", "statx",
    // memory
    "mmap", "mmap2", "munmap", "mremap", "mprotect", "madvise", "brk", "getrandom",
    // threads and time
    "futex", "futex_time64", "set_robust_list", "rseq", "sched_yield", "sched_getaffinity",
    "clock_gettime", "clock_gettime64", "gettimeofday", "gettid", "getpid", "eventfd2", "poll",
    "ppoll",
    // signals, and the end
    "rt_sigaction", "rt_sigprocmask", "rt_sigreturn", "restart_syscall", "exit", "exit_group"
};

/// Libraries look for files, and for a terminal, that they can do without.
constexpr const char *failing[] = { "open",   "openat",     "access", "faccessat", "faccessat2",
                                    "stat",   "stat64",     "lstat",  "lstat64",   "readlink",
                                    "statfs", "readlinkat", "ioctl" };

struct Release
{
    void operator()(void *filter) const { seccomp_release(filter); }
};
using Filter = std::unique_ptr<void, Release>;

/// A call that this system doesn't know can't be made.
bool add(const Filter &filter, uint32_t action, const char *name)
{
    const int call = seccomp_syscall_resolve_name(name);
    return call == __NR_SCMP_ERROR
        || seccomp_rule_add_array(filter.get(), action, call, 0, nullptr) == 0;
}

template <typename Names> bool addAll(const Filter &filter, uint32_t action, const Names &names)
{
    return std::all_of(std::begin(names), std::end(names),
                       [&filter, action](const char *name) { return add(filter, action, name); });
}

/// Scaling uses threads. The newer of the calls that make them hides what it makes from a filter;
/// without it the older one is used.
bool addThreads(const Filter &filter)
{
    const scmp_arg_cmp name = { 0, SCMP_CMP_EQ, PR_SET_NAME, 0 };
    const scmp_arg_cmp thread = { 0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD };
    return add(filter, SCMP_ACT_ERRNO(ENOSYS), "clone3")
        && seccomp_rule_add_array(filter.get(), SCMP_ACT_ALLOW, SCMP_SYS(prctl), 1, &name) == 0
        && seccomp_rule_add_array(filter.get(), SCMP_ACT_ALLOW, SCMP_SYS(clone), 1, &thread) == 0;
}

} // namespace

bool forbidOtherCalls()
{
    const Filter filter(seccomp_init(SCMP_ACT_KILL_PROCESS));
    // Libraries may have started threads of their own when they were loaded.
    return filter && seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1) == 0
        && addAll(filter, SCMP_ACT_ALLOW, allowed)
        && addAll(filter, SCMP_ACT_ERRNO(EACCES), failing) && addThreads(filter)
        && seccomp_load(filter.get()) == 0;
}
#else
bool forbidOtherCalls()
{
    return false;
}
#endif
