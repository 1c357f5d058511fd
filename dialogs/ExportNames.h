#pragma once

#include <QString>

// Texts and paths of the tile export.

/// True when the path exists and is no folder.
bool FileExists(const QString& path);

/// True when the path exists and is a folder.
bool DirExists(const QString& path);

/// The part before the last "/". In a path without one, which then comes from elsewhere, the last "\" or ":"
/// counts: the part before the "\", or up to and including the ":". Empty when there is none of them.
QString ExtractFilePath(const QString& path);

/// Creates the folder and all missing parents, from the root down. The error text is empty afterwards, or
/// "Error Making " followed by the path that could not be created. A path without "/" is neither looked at
/// nor created.
void MakeDir(const QString& path, QString& errorText);

/// True when every character is a letter A to Z or a to z, a digit, ".", "_" or "-"; so for the empty text.
bool IsPosixFileSystemCompatible(const QString& text);

/// The text without blanks at its ends and with "_" for every character that is not compatible.
QString CreatePosixFileSystemCompatibleString(const QString& text);
