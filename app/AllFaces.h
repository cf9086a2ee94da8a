#pragma once

#include "server/Face.h"

/// Both faces with everything that they answer, chosen as the profile says.
FaceMaker allFaces();
