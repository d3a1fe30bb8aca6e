// VeloraUtils.h - the whole public API of the VeloraUtils library in one include.
#pragma once

#include "VeloraUtils/Export.h"
#include "VeloraUtils/NumberFormatting.h"
#include "VeloraUtils/TokenReading.h"
