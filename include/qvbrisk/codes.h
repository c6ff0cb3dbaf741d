/* Code tables of the host solver, for hosts and plug-ins that share them. No computation of this library
 * reads them. Usable from C and C++. */
#ifndef QVBRISK_CODES_H
#define QVBRISK_CODES_H

enum { /* kind of a motion */
       MOTTP_ROT = 0,
       MOTTP_TRA = 1
};

enum { /* kind of a principal axis system */
       KPAXTP_GEO = 1,
       KPAXTP_INS = 2
};

enum { /* how a result is condensed: the first and the last code of the table */
       AVG_RES = 0,
       MAX_RES = 3
};

enum { /* state of a friction element: the first and the last code of the table */
       STATUS_FRICTION_UNKNOWN = 0,
       STATUS_FRICTION_DYNAMIC = 4
};

#endif
