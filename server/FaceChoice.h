#pragma once

#include "server/Face.h"

/// Makes the face that the profile's mode names. In `FaceAuto` a connection gets the standard one
/// when the first head on it names a program that is known to need it, else the classic one; the
/// face then finds everything unread.
FaceMaker chosenFaces(FaceMaker classic, FaceMaker standard);
