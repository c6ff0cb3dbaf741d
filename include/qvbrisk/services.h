/* The ten services that a host solver provides to user subroutines. libqvbrisk.so leaves them undefined; the
 * host's own library (libqvslv.so, or the stand-alone solver's) defines them. Usable from C and C++.
 *
 * Every service takes the host's opaque `handle` first (the one the user subroutine was called with) and reports
 * failure through an int flag that the caller presets to 0. Texts passed in are narrow and null-terminated, texts
 * coming back are wide. */
#ifndef QVBRISK_SERVICES_H
#define QVBRISK_SERVICES_H

#include <stddef.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Capacity, in wide characters, of the text buffers that the library hands to the host; they are zeroed first. */
enum { QV_TEXT_CAPACITY = 1024 };

/* A vector quantity of markers. `count` holds the number of values expected.
 *   "TDISP" 3 values [length]:   ids measured marker, reference marker, marker whose axes express the result
 *   "TVEL"  3 values [length/time], "RVEL" 3 values [rad/time]: the same three ids
 *   "AM"    9 values: ids marker, reference marker; rotation from the marker's axes to the reference's, stored
 *           column by column: values 0-2 are the marker's x axis seen in the reference's axes
 *   "TFORCE" 3 values [force] */
void sysary(void* handle, const char* name, const int* ids, int nids, double* values, int* count, int* err);

/* A scalar quantity: "VARVAL", "DIF20", "DIF21", "DIF22", "VM" and "WM" (magnitude of the translational and of
 * the angular velocity), "FM". */
void sysfnc(void* handle, const char* name, const int* ids, int nids, double* value, int* err);

/* The text of a model's string entity; `text` has room for QV_TEXT_CAPACITY wide characters. */
void get_string_s(void* handle, int id, int* length, wchar_t* text, int* err);

/* The path of the model file; `path` has room for QV_TEXT_CAPACITY wide characters. */
void GET_QVSPATH_S(void* handle, int* length, wchar_t* path, int* err);

/* Ends the analysis with a message, which may be null. The library always passes 1, 0, 1. */
void stop_solver(void* handle, int, int, int, const char* message, int* status);

/* Reports the messages of a failed user subroutine. The texts come from C++ array new; they are the host's now. */
void THROW_ERROR(void* handle, const char* title, int count, char** messages);

/* Akima interpolation of a spline entity at (x, z), z = 0 for a curve; order 0 asks for the value. */
void AKISPL(void* handle, double x, double z, int spline, int order, double* value, int* err);

/* The model's units: scale factors and names. */
void GTUNTS(void* handle, double scale[5], void* names[5], int* err);

/* Cubic step from (x0, h0) to (x1, h1) at x. A kernel without a handle passes a null one. */
void STEP(void* handle, double* value, int* err, double x, double x0, double h0, double x1, double h1);

/* The mass of a body. */
void get_mass(void* handle, const int* id, int nids, double* mass, int* err);

#ifdef __cplusplus
}
#endif

#endif
