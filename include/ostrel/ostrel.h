#pragma once
// Everything a host needs: the control, its events, the platform interface and the headless host.

#include "ostrel/BoardRecords.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/Platform.h"
#include "ostrel/Variant.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/notation.h"
