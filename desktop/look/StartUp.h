#pragma once

class QCoreApplication;

/// Remembers the start-up style and applies what the look-and-feel dialog stored. The application
/// object exists and has its names.
void applyStoredLook();

/// Installs the texts of the user's language; missing ones leave the source texts. The
/// directories are set up. The translators belong to `app`.
void installTranslators(QCoreApplication *app);
