// VeloraUtils.h - the whole public API of the VeloraUtils library in one include.
#pragma once

#include "VeloraUtils/DateTime.h"
#include "VeloraUtils/DelimitedText.h"
#include "VeloraUtils/Export.h"
#include "VeloraUtils/FixParsing.h"
#include "VeloraUtils/FixTagCollection.h"
#include "VeloraUtils/LineBuffers.h"
#include "VeloraUtils/Monetary.h"
#include "VeloraUtils/NumberFormatting.h"
#include "VeloraUtils/PriceConversion.h"
#include "VeloraUtils/PriceText.h"
#include "VeloraUtils/Prices.h"
#include "VeloraUtils/SymbolValidity.h"
#include "VeloraUtils/TextSearch.h"
#include "VeloraUtils/Thermograph.h"
#include "VeloraUtils/TokenReading.h"
#include "VeloraUtils/WsaCollection.h"
