/* The ten services that a host provides to user subroutines. Usable from C and C++.
 *
 * How they are found. libqvbrisk.so is linked without them: they are undefined symbols that the dynamic linker binds
 * while it loads the library. Whatever is visible by then may define them: the host program itself (linked with
 * -rdynamic), a library it is linked with, or one loaded before with global scope. libqvslv.so, the name of the usual
 * host's library, is also the name of the stand-alone solver's, which defines all ten. A host that lacks one of them is
 * refused with its name ("undefined symbol: sysary").
 *
 * When they are called. Only from within a call of a user subroutine, in the thread of that call. `handle` is the
 * pointer that the subroutine was called with; the library never looks behind it. A service answers for the time and
 * state of that call. It returns to the library, without an exception or a longjmp, and calls no user subroutine.
 *
 * What they answer in. Lengths, masses, times and forces are in the model's units, angles in radians, angular
 * velocities in radians per the model's time unit. "The ground" is the frame that does not move; its axes are the
 * global ones. A velocity is one that the ground sees, whatever axes express it.
 *
 * When one cannot answer. It sets its int flag to a value other than 0 and leaves every other output as it was. The
 * library sets each flag to 0 before the call and does not test it afterwards: since it also sets every output to zero
 * before (and every text buffer to zeros), an unanswered request counts as zeros or an empty text. A host that wants
 * to end the run for it does so by itself.
 *
 * Names and texts that the library passes are narrow and null-terminated. Like all arrays and buffers they are the
 * library's and valid during the call only; the messages of THROW_ERROR are the one exception. */
#ifndef QVBRISK_SERVICES_H
#define QVBRISK_SERVICES_H

#include <stddef.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Capacity, in wide characters, of the text buffers of get_string_s and GET_QVSPATH_S, terminator included. */
enum { QV_TEXT_CAPACITY = 1024 };

/* A vector quantity of markers.
 *
 *   name     one of those below
 *   ids      `nids` ids, from one to three, in this order: the measured marker m, the reference marker r, the marker a
 *            whose axes express the result. Ids that are left out are the ground's: its origin, its axes
 *   values   room for `*count` values
 *   count    in: the number of values expected, 9 for "AM" and 3 for all others; out: the number written, the same
 *
 *   "TDISP"  [length]       from the origin of r to the origin of m
 *   "TVEL"   [length/time]  velocity of m's origin minus velocity of r's origin, both seen from the ground. In the axes
 *                           of an r that turns this is not the rate of change of "TDISP"
 *   "RVEL"   [rad/time]     angular velocity of m minus that of r
 *   "AM"     [-]            3x3 rotation from m's axes to r's: it turns components in the axes of m into components in
 *                           the axes of r. Stored column by column: values 0 to 2 are m's x axis seen in r's axes
 *   "TFORCE" [force]        if the first id is that of a force element: the force that it exerts on its own marker, as
 *                           last evaluated; a second id has no influence. If it is a marker's: the sum of the forces
 *                           that act at m minus those that react on it, with r only of those between m and r
 *
 * The library asks "AM" with (m) and (m, r); "TDISP" with (m) and (m, r, a); "TVEL" with (m, r) and (m, r, a); "RVEL"
 * with (m) and (m, r, a); "TFORCE" with (f, a, a), f a force element, for qvhydro_report. Anything more is for other
 * subroutines, and the stand-alone solver answers it. The library passes ids as they stand in an element's parameters,
 * so r and a may well be markers on the ground. */
void sysary(void* handle, const char* name, const int* ids, int nids, double* values, int* count, int* err);

/* A scalar quantity.
 *
 *   name     one of those below
 *   ids      `nids` ids
 *   value    one value
 *
 *   "VARVAL"  value of the variable with this id. qvsoil_mtl_eom and qvsoil_mtl_velocity ask "VARVAL" and "DIF21" with
 *             one id, so a host that numbers variables and equations apart answers for the equation's y if no variable
 *             has the id
 *   "DIF20", "DIF21", "DIF22"  the value y of the differential equation with this id, its first and its second rate of
 *             change [per time, per time^2]. Values that the equation's order makes no states may be those of the last
 *             accepted step
 *   "FM"      [force] magnitude of "TFORCE" of these ids; if the second is the ground's marker, of all forces at m
 *   "VM"      [length/time] magnitude of "TVEL" of these ids
 *   "WM"      [rad/time] magnitude of "RVEL" of these ids
 *
 * The library asks "FM" with two ids and every other quantity with one. The id of "VM" and "WM" is a body's, the same
 * that it asks get_mass for: it stands for a marker at the body's centre of mass. */
void sysfnc(void* handle, const char* name, const int* ids, int nids, double* value, int* err);

/* The text of a model's string entity: the name of a data file.
 *
 *   id       of the string entity
 *   length   the number of characters; the library sets it to 0 before. It takes the text up to the first zero, or to
 *            the end of the buffer, and looks at the length only to refuse one below 0 or above QV_TEXT_CAPACITY
 *   text     room for QV_TEXT_CAPACITY wide characters, all zero before the call; a longer text cannot be answered */
void get_string_s(void* handle, int id, int* length, wchar_t* text, int* err);

/* The path of the model file, with its folder: a data file that is not found under its own name is looked for there.
 * `length` and `path` are as for get_string_s. */
void GET_QVSPATH_S(void* handle, int* length, wchar_t* path, int* err);

/* Asks the host to end the analysis. It returns, and the subroutine completes its call; the host stops behind it.
 * The library asks this if a road cannot be read for a reason that has no message, as when memory runs out. The three
 * ints are 1, 0, 1 in every call; nothing here gives them a meaning. `message` is null if there is none. `status` is 0
 * before the call and not looked at afterwards. */
void stop_solver(void* handle, int, int, int, const char* message, int* status);

/* Reports that a user subroutine failed; called once per failed call, after which the subroutine returns. Or warns: a
 * set-up call asked for another file or other sizes than its element was set up with before, which stays; at most once
 * for each element, and the call goes on as if nothing had been said.
 *
 *   title     "USUB ERROR", or "USUB WARNING"
 *   count     number of messages, 0 to 5. 0 says that the fault left no text
 *   messages  `count` null-terminated texts. Each comes from C++ array new and is the host's from now on: it may
 *             delete[] it at any time. The array itself stays the library's and is gone after the call */
void THROW_ERROR(void* handle, const char* title, int count, char** messages);

/* Akima interpolation of a spline entity of the model, for qvsoil_thrustforce.
 *
 *   x        abscissa
 *   z        second abscissa of a surface; the library passes 0, for a curve
 *   spline   id of the spline entity
 *   order    0 the value, 1 and 2 its first and second derivative in x; the library passes 0
 *   value    one value */
void AKISPL(void* handle, double x, double z, int spline, int order, double* value, int* err);

/* The model's units, for qvhydro_force.
 *
 *   scale    what the model's units of length, mass, time, force and angle are in SI, in this order: 0.001 first for a
 *            model in millimetres. The library uses the first four. It divides by them: if this is not answered, the
 *            forces are not finite
 *   names    room for the host's names of the five units, null before the call; the library does not look at them, and
 *            a host may leave them null */
void GTUNTS(void* handle, double scale[5], void* names[5], int* err);

/* Cubic step: `value` is h0 for x <= x0, h1 for x >= x1 and h0 + (h1 - h0) s^2 (3 - 2 s) with s = (x - x0)/(x1 - x0)
 * between them. It needs no model: the library's only caller, the contact force kernel, passes a null handle. None of
 * the thirteen subroutines calls that kernel, yet the host must define the symbol. */
void STEP(void* handle, double* value, int* err, double x, double x0, double h0, double x1, double h1);

/* The mass of a body, for qvballplacing_report. `id` points to the body's id, `nids` is 1, `mass` is one value. */
void get_mass(void* handle, const int* id, int nids, double* mass, int* err);

#ifdef __cplusplus
}
#endif

#endif
