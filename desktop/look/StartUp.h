#pragma once

class QCoreApplication;
class QString;

/// Remembers the start-up style and applies what the look-and-feel dialog stored. The application
/// object exists and has its names.
void applyStoredLook();

/// Installs the texts in the folder of the user's language; missing ones leave the source texts.
/// The translators belong to `app`.
void installTranslators(QCoreApplication *app, const QString &languageFolder);
