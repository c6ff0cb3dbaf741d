/* Physical and conversion constants. Usable from C and C++. */
#ifndef QVBRISK_CONSTANTS_H
#define QVBRISK_CONSTANTS_H

static const double PI = 3.141592653589793;
static const double TPI = 6.283185307179586;       /* 2 PI */
static const double HPI = 1.5707963267948966;      /* PI / 2 */
static const double INVPI = 0.3183098861837907;    /* 1 / PI */
static const double INVTPI = 0.15915494309189535;  /* 1 / (2 PI) */
static const double PIINV18 = 0.17453292519943295; /* PI / 18 */
static const double RTOD = 57.29577951308232;      /* degrees per radian */
static const double DTOR = 0.017453292519943295;   /* radians per degree */
static const double WTORPM = 9.549296585513721;    /* rpm per rad/s */
static const double RPMTOW = 0.10471975511965977;  /* rad/s per rpm */

#endif
