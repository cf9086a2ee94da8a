#pragma once

#include "server/Face.h"

#include <QByteArray>

/// Has a peer say `bytes` to a server whose faces are made by `faces`, in pieces that the first
/// byte decides on, and take everything, sooner or later; then it goes. The share holds a few small
/// files, which come back when a run took them away.
void talk(const FaceMaker &faces, const QByteArray &bytes);
