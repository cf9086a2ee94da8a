#pragma once

/// Leaves to this process what decoding needs of the system: memory, threads, and reading and
/// writing what is open. To open a file fails from here on; any other call ends the process by
/// SIGSYS (see seccomp(2)). False, and everything stays as it was, when the kernel can't or the
/// program was built without libseccomp.
bool forbidOtherCalls();
