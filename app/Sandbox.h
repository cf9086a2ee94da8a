#pragma once

#include <QStringList>

/// What a process, and every program that it starts, may still do once it is confined. A folder
/// stands for all below it; paths that don't exist are left out.
struct SandboxRules
{
    enum class Files {
        Named, ///< only what is named can be opened or changed
        All ///< files stay as open as they were
    };

    Files files = Files::Named;
    QStringList readable;
    QStringList writable; ///< to read, and everything may be made, changed and removed there
    QStringList programs; ///< nothing else may be started
};

/// How far the kernel could confine a process.
enum class Confinement {
    None, ///< it knows nothing of that, or too little
    Files, ///< the rules hold
    FilesAndNetwork ///< and no TCP connection can be made to anyone
};

/// Confines this process for the rest of its life (Landlock, see landlock(7)). What is open stays
/// open, and it may listen and accept. Call while there is one thread: others stay free.
Confinement confine(const SandboxRules &rules);
