#pragma once

/// What the user wants the program to do in the desktop besides its window.
struct DesktopChoices
{
    bool staysInTray = false; ///< when the window is closed
    bool startsAtLogin = false;
    bool notifies = true;

    /// As they were stored last.
    static DesktopChoices stored();

    /// False when the desktop can't be told what to start.
    bool store() const;
};
