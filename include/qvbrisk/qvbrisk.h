/* Everything a host or a plug-in author needs. Usable from C and C++. */
#ifndef QVBRISK_QVBRISK_H
#define QVBRISK_QVBRISK_H

#include "qvbrisk/codes.h"
#include "qvbrisk/constants.h"
#include "qvbrisk/layouts.h"
#include "qvbrisk/services.h"
#include "qvbrisk/subroutines.h"

#endif
