#pragma once

class QString;

/// The folders that the user wants to share although everyone can change them. They stand in the
/// application settings.
bool isAcceptedFolder(const QString &path);
void acceptFolder(const QString &path);
