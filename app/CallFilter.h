#pragma once

/// Leaves to this process what decoding needs of the system: memory, threads, and reading and
/// writing what is open. To open a file fails from here on; any other call ends the process by
/// SIGSYS (see seccomp(2)). False when the kernel refuses; a program that was built without
/// libseccomp goes on as it was.
bool forbidOtherCalls();
